// Everything of this program that speaks Wayland, put together for one compositor. Main thread only, but for
// `restoreAtExit`.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "platform/Accessibility.h"
#include "platform/linux/DisplayFamily.h"
#include "platform/linux/display/HeldKeyTaps.h"
#include "platform/linux/wayland/PanelServer.h"

namespace dormel::wayland {

class WaylandPlatform final : public DisplayFamily {
 public:
  /// On a connection to a compositor that has an overlay for us (DisplayChoice.h). `lockMark` is where the mark of a
  /// session lock is kept; empty: no session lock is used, the overlay is all. `loop`, `canvases` and `clock` outlive
  /// it.
  WaylandPlatform(std::unique_ptr<Connection> connection, const std::string& lockMark, EventLoop& loop,
                  CanvasFactory& canvases, const Clock& clock);
  WaylandPlatform(const WaylandPlatform&) = delete;
  WaylandPlatform& operator=(const WaylandPlatform&) = delete;
  ~WaylandPlatform() override;

  void setOnLost(Task onLost) override { onLost_ = std::move(onLost); }
  void setOnScreensChanged(Task onChange) override { outputs_.setOnChange(std::move(onChange)); }

  [[nodiscard]] Accessibility& accessibility() override { return accessibility_; }
  [[nodiscard]] EventTaps& eventTaps() override { return taps_; }
  [[nodiscard]] HardwareKeys& hardwareKeys() override { return keyboard_; }
  [[nodiscard]] InputIdle& inputIdle() override { return idle_; }
  [[nodiscard]] KeyboardLayout& keyboardLayout() override { return keyboard_.labels(); }
  [[nodiscard]] Screens& screens() override { return outputs_; }
  [[nodiscard]] WindowServer& windows() override { return panels_; }

  void setLockdown(bool on) override;
  void restoreAtExit(bool comesBack) override;

 private:
  class Trust : public Accessibility {
   public:
    explicit Trust(const Connection& connection) : connection_(connection) {}
    [[nodiscard]] bool isProcessTrusted() const override { return connection_.isAlive(); }

   private:
    const Connection& connection_;
  };
  /// A compositor tells nobody since when nothing has been touched.
  class UnknownIdle : public InputIdle {
   public:
    [[nodiscard]] Seconds secondsSinceLast(InputKind /*kind*/) const override { return -1; }
  };

  std::unique_ptr<Connection> connection_;
  Outputs outputs_;
  Keyboard keyboard_;
  Pointer pointer_;
  std::shared_ptr<PanelContext> environment_;
  Trust accessibility_;
  HeldKeyTaps taps_;
  UnknownIdle idle_;
  PanelServer panels_;
  Task onLost_;
};

}  // namespace dormel::wayland
