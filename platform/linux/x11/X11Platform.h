// Everything of this program that speaks X, put together for one display. Main thread only, but for `restoreAtExit`.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <utility>

#include "platform/linux/DisplayFamily.h"
#include "platform/linux/x11/AccessibilityX11.h"
#include "platform/linux/x11/EventTapX11.h"
#include "platform/linux/x11/HardwareKeysX11.h"
#include "platform/linux/x11/IdleX11.h"
#include "platform/linux/x11/LayoutX11.h"
#include "platform/linux/x11/Lockdown.h"
#include "platform/linux/x11/ManagedWindows.h"
#include "platform/linux/x11/PanelServer.h"
#include "platform/linux/x11/RunningApplicationsX11.h"
#include "platform/linux/x11/ScreensX11.h"
#include "platform/linux/x11/WindowListX11.h"

namespace dormel::x11 {

class X11Platform final : public DisplayFamily {
 public:
  /// Connects to `display` ($DISPLAY when empty) and delivers events on `loop`. Where that fails, all services are
  /// there, but there are no screens, no tap and no trust. What is handed over outlives it.
  X11Platform(EventLoop& loop, CanvasFactory& canvases, const Clock& clock, const std::string& display = {});
  X11Platform(const X11Platform&) = delete;
  X11Platform& operator=(const X11Platform&) = delete;
  ~X11Platform() override;

  [[nodiscard]] bool hasDisplay() const { return connection_ != nullptr; }
  /// The server is only a Wayland compositor's bridge for X programs.
  [[nodiscard]] bool isBridge() const { return features_.xwayland; }
  /// Called when the server is gone (nothing shows any more and nothing will), and when a lockdown has lost the
  /// connection that takes the keyboard. Where one follows the other, for each.
  void setOnLost(Task onLost) override;
  void setOnScreensChanged(Task onChange) override;

  [[nodiscard]] Accessibility& accessibility() override { return accessibility_; }
  [[nodiscard]] EventTaps& eventTaps() override { return eventTaps_; }
  [[nodiscard]] HardwareKeys& hardwareKeys() override { return hardwareKeys_; }
  [[nodiscard]] InputIdle& inputIdle() override { return inputIdle_; }
  [[nodiscard]] KeyboardLayout& keyboardLayout() override { return layout_; }
  [[nodiscard]] Screens& screens() override { return *screens_; }
  [[nodiscard]] WindowServer& windows() override { return windows_; }
  [[nodiscard]] RunningApplications& runningApplications() { return runningApplications_; }
  [[nodiscard]] WindowList& windowList() { return windowList_; }

  /// How applications are told from each other, by the names on their windows.
  void setApplicationNaming(ApplicationNaming naming) { runningApplications_.setNaming(std::move(naming)); }

  /// Whether a local monitor swallows the press of this key, by its X key code, in a window of the toolkit's own.
  [[nodiscard]] bool isKeyDownSwallowed(unsigned keycode);
  /// Whether windows may be translucent.
  [[nodiscard]] bool isCompositing() const { return windows_.isCompositing(); }
  [[nodiscard]] ManagedWindows& managedWindows() { return managedWindows_; }

  /// On for any presentation options, off for none.
  void setLockdown(bool on) override;
  /// Gives back what must not be left behind by a process that ends without coming back to the main loop; to be
  /// called right before it exits: where keys are taken, it ends the connection to the server, and that is not reported
  /// as lost. Takes half a second at most, whatever the server does. Any thread.
  void restoreAtExit(bool comesBack) override;

 private:
  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  std::shared_ptr<ScreensX11> screens_;
  KeyNumbering numbering_;
  std::shared_ptr<AccessXSuspension> accessXSuspension_;
  AccessibilityX11 accessibility_;
  EventTapsX11 eventTaps_;
  HardwareKeysX11 hardwareKeys_;
  IdleX11 inputIdle_;
  LayoutX11 layout_;
  PanelServer windows_;
  RunningApplicationsX11 runningApplications_;
  WindowListX11 windowList_;
  ManagedWindows managedWindows_;
  std::unique_ptr<Lockdown> lockdown_;
  std::atomic<bool> isLockedDown_ = false;
  std::atomic<bool> isEnding_ = false;
  const std::string display_;
};

}  // namespace dormel::x11
