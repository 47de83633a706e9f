// The event tap on Wayland: while it is wanted, a surface of ours has the keyboard of every seat, and keeps it. That is
// what "enabled" means. What came to us went to nobody else: the verdict of the callback has no effect here.
// Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/linux/wayland/Panel.h"

namespace dormel::wayland {

class EventTapsWayland : public EventTaps {
 public:
  explicit EventTapsWayland(std::shared_ptr<PanelContext> environment);
  EventTapsWayland(const EventTapsWayland&) = delete;
  EventTapsWayland& operator=(const EventTapsWayland&) = delete;
  ~EventTapsWayland() override;

  [[nodiscard]] std::unique_ptr<EventTap> create(std::function<TapVerdict(const KeyEvent&)> callback) override;

  /// Shows the taps a key that came to us; false when there is none, and it is its window's.
  bool deliver(const KeyEvent& event);
  /// The keyboard came or went.
  void focusChanged();

 private:
  struct State {
    std::function<TapVerdict(const KeyEvent&)> callback;
    bool isWanted = false;
    bool wasEnabled = false;
    int sources = 0;
  };
  class Tap;
  class Source;

  void wantedChanged();

  std::shared_ptr<PanelContext> env_;
  /// Outlived by taps of a platform that is gone.
  std::shared_ptr<EventTapsWayland*> self_;
  std::vector<std::weak_ptr<State>> taps_;
};

}  // namespace dormel::wayland
