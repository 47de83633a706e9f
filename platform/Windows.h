// The window server: screens, panels, the application as the desktop sees it, and the notifications of the three.
// Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Keyboard.h"
#include "platform/RunLoop.h"
#include "platform/Time.h"
#include "platform/View.h"

namespace dormel {

struct Screen {
  std::string name;   ///< the connector's, for people ("DP-1"); two screens may share one
  Rect frame;         ///< all of it
  Rect visibleFrame;  ///< without the desktop's bars and docks
  /// All of it as the window list measures: from the top left corner of the primary display, y downwards. Nothing when
  /// the window server knows it under no number.
  std::optional<Rect> displayBounds{};
};

class Screens {
 public:
  virtual ~Screens() = default;
  /// The screens that show something, the platform's order, mirrored ones once.
  [[nodiscard]] virtual std::vector<Screen> all() const = 0;
  /// The primary screen; nothing when there is none.
  [[nodiscard]] virtual std::optional<Screen> main() const = 0;
};

enum class WindowLevel {
  floating,     ///< above ordinary windows
  status,       ///< above the floating ones
  screenSaver,  ///< above everything, whatever maps later
};

/// How a window behaves on desktops with several spaces. The bits add up; 337 is all that we use.
enum CollectionBehavior : std::uint32_t {
  canJoinAllSpaces = 1,
  stationary = 16,
  ignoresCycle = 64,
  fullScreenAuxiliary = 256,
};

enum class WindowBackground { black, clear };

/// A borderless panel that does not activate the application when it is clicked.
struct WindowStyle {
  WindowLevel level = WindowLevel::floating;
  std::uint32_t collectionBehavior = 0;
  bool hidesOnDeactivate = false;
  WindowBackground background = WindowBackground::clear;
  bool isOpaque = false;
  bool hasShadow = false;
  bool ignoresMouseEvents = false;
  bool isMovableByBackground = false;
  bool canBecomeKey = false;  ///< key and main window alike
};

enum class TimingCurve { linear, easeIn, easeOut, easeInOut };

/// One panel. It is invisible until it is ordered in, and gone from the screen when it is destroyed.
class Window {
 public:
  virtual ~Window() = default;

  /// In points, and the same until somebody sets or drags it: when the main screen's corner or the scale changes, the
  /// window goes where its frame is then, right after `screenParametersChanged`.
  [[nodiscard]] virtual Rect frame() const = 0;
  virtual void setFrame(const Rect& frame) = 0;

  /// What it shows. The window shares ownership and draws it afresh whenever the view changes.
  virtual void setContent(std::shared_ptr<View> view) = 0;
  /// The size at which the content is as it wants to be; zero without content.
  [[nodiscard]] virtual Size contentFittingSize() const = 0;

  [[nodiscard]] virtual double alpha() const = 0;
  /// 0 invisible to 1 opaque, at once; ends an animation that runs on it.
  virtual void setAlpha(double alpha) = 0;

  /// Gives it the keyboard focus, as far as anyone can have it, and orders it front.
  virtual void makeKeyAndOrderFront() = 0;
  /// Above the others of its level even though the application may not be active. It never shows anything but
  /// its background and its content, not even for a frame.
  virtual void orderFrontRegardless() = 0;
  virtual void orderOut() = 0;
  [[nodiscard]] virtual bool isVisible() const = 0;

  /// Where the key events go that reach the window itself.
  virtual void setKeyHandler(std::function<void(const KeyEvent&)> handler) = 0;
};

/// Ends what it stands for (an observation, a monitor) when it is destroyed.
class Registration {
 public:
  virtual ~Registration() = default;
};

class WindowServer {
 public:
  virtual ~WindowServer() = default;

  /// A panel with that content rectangle, alpha 1, not ordered in. Never null: where the display is gone it is
  /// a window that nobody sees.
  [[nodiscard]] virtual std::shared_ptr<Window> makeWindow(const WindowStyle& style, const Rect& contentRect) = 0;

  /// Animates the alpha of all of `windows` to `alpha` over `duration`, then calls `completion` once on the main
  /// thread, also when there are no windows or they went away. Windows are held weakly.
  virtual void animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                            TimingCurve curve, Task completion) = 0;

  /// Shows every key-down that reaches one of this application's own windows to `monitor` first; true from it
  /// swallows the event. Null when none can be installed.
  [[nodiscard]] virtual std::unique_ptr<Registration> addLocalKeyDownMonitor(
      std::function<bool(const KeyEvent&)> monitor) = 0;

  /// Calls `onFrame` from the main loop once for each frame of the display while it lives; it may be destroyed inside
  /// its own call.
  [[nodiscard]] virtual std::unique_ptr<Registration> makeDisplayLink(Task onFrame) = 0;
};

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

enum class Notice { screenParametersChanged, willSleep, didWake };

class Notices {
 public:
  virtual ~Notices() = default;
  /// Calls `handler` on every such notice while the registration lives.
  [[nodiscard]] virtual std::unique_ptr<Registration> observe(Notice notice, Task handler) = 0;
};

/// The application bundle this process runs from.
class Bundle {
 public:
  virtual ~Bundle() = default;
  /// The bundle's folder, ".../Dormel.app"; the executable's folder when it runs outside a bundle.
  [[nodiscard]] virtual std::string path() const = 0;
  /// The bundle's executable; nothing outside a bundle.
  [[nodiscard]] virtual std::optional<std::string> executablePath() const = 0;
  /// A text of the bundle's information property list ("CFBundleShortVersionString"); nothing when absent.
  [[nodiscard]] virtual std::optional<std::string> info(const std::string& key) const = 0;

  /// The command that removes the system's package which this bundle belongs to, for people ("sudo apt remove dormel").
  /// Nothing for a bundle that somebody put where it stands: only such a one is the program's own to move, to update
  /// and to delete.
  [[nodiscard]] virtual std::optional<std::string> packageRemoval() const = 0;
  [[nodiscard]] bool isPackaged() const { return packageRemoval().has_value(); }
};

}  // namespace dormel
