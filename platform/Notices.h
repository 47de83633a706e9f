// What the desktop announces: changed screens, sleep and wake. Main thread only.
#pragma once

#include <memory>

#include "platform/Registration.h"
#include "platform/RunLoop.h"

namespace dormel {

enum class Notice { screenParametersChanged, willSleep, didWake };

class Notices {
 public:
  virtual ~Notices() = default;
  /// Calls `handler` on every such notice while the registration lives.
  [[nodiscard]] virtual std::unique_ptr<Registration> observe(Notice notice, Task handler) = 0;
};

}  // namespace dormel
