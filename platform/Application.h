// The application as the desktop sees it: its kind, what it takes out of the way, and its end. Main thread only.
#pragma once

#include <cstdint>

namespace dormel {

/// Raw values of the application's presentation options; they add up.
enum PresentationOption : std::uint32_t {
  hideDock = 1U << 1,
  hideMenuBar = 1U << 3,
  disableAppleMenu = 1U << 4,
  disableProcessSwitching = 1U << 5,
  disableForceQuit = 1U << 6,
  disableHideApplication = 1U << 8,
};

enum class ActivationPolicy {
  regular,     ///< a window in the task switcher, a menu
  accessory,   ///< neither
  prohibited,  ///< no windows at all
};

/// What the application object asks its delegate.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;
  virtual void didFinishLaunching() = 0;
  virtual void didBecomeActive() = 0;
  /// A quit request of the user or the desktop; false refuses it.
  virtual bool shouldTerminate() = 0;
  virtual void willTerminate() = 0;
};

class Application {
 public:
  virtual ~Application() = default;
  virtual void setActivationPolicy(ActivationPolicy policy) = 0;
  /// Brings the application to the front, whatever else is active.
  virtual void activateIgnoringOthers() = 0;
  /// Sets the whole set. Anything but the empty set takes the desktop's ways out of the way (shortcuts, task
  /// switching, the server's own escape keys); the empty set gives all of them back.
  virtual void setPresentationOptions(std::uint32_t options) = 0;
  [[nodiscard]] virtual std::uint32_t presentationOptions() const = 0;
  /// A quit request: asks the delegate, and if it agrees tells it `willTerminate` and exits with status 0.
  virtual void terminate() = 0;
};

}  // namespace dormel
