// The permission to take the whole keyboard.
#pragma once

namespace dormel {

class Accessibility {
 public:
  virtual ~Accessibility() = default;
  /// Whether this process may capture keys system-wide, asked afresh. Main thread.
  [[nodiscard]] virtual bool isProcessTrusted() const = 0;
};

}  // namespace dormel
