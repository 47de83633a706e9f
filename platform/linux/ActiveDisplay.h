// The display of this process: the family that was chosen from what is there, and its services. Main thread only, but
// for `restoreAtExit`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/common/Canvas.h"
#include "platform/linux/DisplayChoice.h"
#include "platform/linux/DisplayFamily.h"
#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/x11/X11Platform.h"

namespace dormel {

namespace gnome {
class GnomePlatform;
}
namespace wayland {
class WaylandPlatform;
}

class ActiveDisplay {
 public:
  /// `lockMark`: where the mark of a Wayland session lock is kept. `limit`: how long this process may go on at most;
  /// what outlives it ends then, too. `loop`, `canvases` and `clock` outlive it.
  ActiveDisplay(DisplayUse use, const std::string& lockMark, EventLoop& loop, CanvasFactory& canvases,
                const Clock& clock, std::function<std::optional<Seconds>()> limit);
  ActiveDisplay(const ActiveDisplay&) = delete;
  ActiveDisplay& operator=(const ActiveDisplay&) = delete;
  ~ActiveDisplay();

  [[nodiscard]] DisplayKind kind() const { return kind_; }
  /// Whether it is a Wayland compositor's, be it by way of its bridge for X programs.
  [[nodiscard]] bool isWayland() const;
  /// One line that says which family is in force.
  [[nodiscard]] std::string description() const;
  /// Whether there is a display now, in a process that found none at its start.
  [[nodiscard]] bool hasAppeared() const;

  [[nodiscard]] DisplayFamily& family();
  [[nodiscard]] RunningApplications& runningApplications();
  [[nodiscard]] WindowList& windowList();
  /// Null unless X11 is in force, with or without a display.
  [[nodiscard]] x11::X11Platform* x11() { return x11_.get(); }

  /// Gives back what must not be left behind, a session lock that one of us left behind included. Takes three seconds
  /// at most. Any thread.
  void restoreAtExit(bool comesBack);

 private:
  /// Where nobody tells what other programs show: nothing is known of them.
  struct NullWindowList;

  const std::string lockMark_;
  DisplayKind kind_ = DisplayKind::none;
  std::unique_ptr<gnome::GnomePlatform> gnome_;
  std::unique_ptr<wayland::WaylandPlatform> wayland_;
  std::unique_ptr<x11::X11Platform> x11_;
  std::unique_ptr<NullWindowList> nullWindowList_;
};

}  // namespace dormel
