// What the program's ordinary windows share. Main thread only.
#pragma once

#include <QKeyEvent>
#include <QPointer>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/linux/qt/SceneLoader.h"

namespace dormel {

class DesktopWindow;

/// What only the display system can do for a window of ours; each may be empty where nothing more can be done.
struct WindowHelp {
  /// Whether somebody watches all keys that reach our windows and swallows this press of a hardware key code.
  std::function<bool(unsigned hardwareKey)> isSwallowed;
  /// Gives the window the focus even if the desktop would rather not have one application push itself forward.
  std::function<void(WId)> activate;
  /// Whether windows may be translucent.
  std::function<bool()> canBlend;
};

class WindowGroup {
 public:
  WindowGroup(std::shared_ptr<SceneLoader> stage, WindowHelp help) : stage_(std::move(stage)), help_(std::move(help)) {}

  [[nodiscard]] SceneLoader& stage() { return *stage_; }
  [[nodiscard]] const WindowHelp& help() const { return help_; }

  /// The one that alerts belong to; null when none is open.
  [[nodiscard]] DesktopWindow* mainWindow() const { return mainWindow_; }
  void setMainWindow(DesktopWindow* window);
  void setOnMainWindow(std::function<void(DesktopWindow&)> onMainWindow) { onMainWindow_ = std::move(onMainWindow); }

  /// Whether an alert waits for its answer: until then no other window can be operated.
  [[nodiscard]] bool isAlertOpen() const { return alerts_ > 0; }
  void countAlert(int by) { alerts_ += by; }

  /// Has every key press in any of the windows shown to `shortcut` before the focused control; true takes it.
  void setShortcuts(std::function<bool(const QKeyEvent&)> shortcut) { shortcut_ = std::move(shortcut); }
  /// Whether the press is taken before the window's controls see it.
  [[nodiscard]] bool takes(const QKeyEvent& press) const;

 private:
  std::shared_ptr<SceneLoader> stage_;
  WindowHelp help_;
  QPointer<DesktopWindow> mainWindow_;
  std::function<void(DesktopWindow&)> onMainWindow_;
  std::function<bool(const QKeyEvent&)> shortcut_;
  int alerts_ = 0;
};

}  // namespace dormel
