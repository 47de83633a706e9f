// Takes the keyboard system-wide while the lock is up: every key event goes to the bypass controller and to nobody
// else. Needs the accessibility permission. Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "challenge/BypassController.h"
#include "platform/Keyboard.h"
#include "platform/RunLoop.h"

namespace dormel {

/// Started at most once; its owner replaces it for the next lock and calls `stop` before letting go of it.
class KeyInterceptor : public std::enable_shared_from_this<KeyInterceptor> {
 public:
  [[nodiscard]] static std::shared_ptr<KeyInterceptor> create(std::shared_ptr<BypassController> bypassController);
  ~KeyInterceptor();

  /// Installs and enables the tap; false, with one printed line, when there is no permission or no tap to be had.
  /// A tap that the system disables later is enabled again within 5 s.
  bool start();
  /// Gives the keyboard back. Harmless when `start` failed or was never called.
  void stop();

  /// When set, Escape key-downs run this, in a later turn of the main loop, instead of reaching the controller.
  void setOnEscape(std::function<void()> action) { onEscape_ = std::move(action); }

  [[nodiscard]] bool isRunning() const { return eventTap_ != nullptr; }

 private:
  explicit KeyInterceptor(std::shared_ptr<BypassController> bypassController);
  TapVerdict keyEventCallback(const KeyEvent& event);
  TapVerdict handleEvent(const KeyEvent& event);

  std::unique_ptr<EventTap> eventTap_;
  std::unique_ptr<RunLoopSource> runLoopSource_;
  Timer healthTimer_;
  std::shared_ptr<BypassController> bypassController_;
  std::function<void()> onEscape_;
};

}  // namespace dormel
