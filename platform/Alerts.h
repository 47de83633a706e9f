// Alerts: a short text and one to three buttons, on top of the program's windows, operable by keyboard. Main thread.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace dormel {

enum class AlertStyle { informational, warning, critical };

struct Alert {
  AlertStyle style = AlertStyle::informational;
  std::string message;
  std::string informativeText;
  /// The first is the default and answers Return. A button named "Cancel", "Quit" or "Not Now" answers Escape, and
  /// so does the only one.
  std::vector<std::string> buttons{"OK"};
};

/// An alert on screen. Destroying it before it was answered takes it off without an answer.
class ShownAlert {
 public:
  virtual ~ShownAlert() = default;
};

class Alerts {
 public:
  virtual ~Alerts() = default;
  /// Shows the alert and calls `onAnswer` with the index of the button, once, in a later turn of the main loop.
  [[nodiscard]] virtual std::unique_ptr<ShownAlert> show(const Alert& alert, std::function<void(int)> onAnswer) = 0;
};

}  // namespace dormel
