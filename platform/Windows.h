// The window server: panels, their fades, and the keys that reach them. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/Geometry.h"
#include "platform/Keyboard.h"
#include "platform/Registration.h"
#include "platform/RunLoop.h"
#include "platform/Time.h"
#include "platform/View.h"

namespace dormel {

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

}  // namespace dormel
