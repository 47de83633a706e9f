// What drawing needs of its process: little enough for a process that does nothing else. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/Time.h"

namespace dormel {

struct DrawingServices {
  std::function<Seconds()> uptime;                   ///< the clock that holds are measured by
  std::function<void(std::string_view)> printError;  ///< one line into the operator's log
  std::function<std::string()> bundlePath;           ///< as Bundle::path

  /// Those of the platform that is in force when they are asked.
  [[nodiscard]] static DrawingServices ofPlatform();
};

}  // namespace dormel
