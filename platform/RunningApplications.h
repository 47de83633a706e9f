// The applications that show windows on this desktop, and which of them the user works in. Main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Application.h"
#include "platform/Registration.h"
#include "platform/RunLoop.h"

namespace dormel {

/// The identifier under which the desktop's own settings program goes, whichever that is.
inline constexpr const char* SYSTEM_SETTINGS = "com.apple.systempreferences";

struct RunningApplication {
  std::int32_t processIdentifier = 0;
  std::string bundleIdentifier;
  ActivationPolicy activationPolicy = ActivationPolicy::regular;
};

class RunningApplications {
 public:
  virtual ~RunningApplications() = default;

  /// Those with that identifier, the one that came first in front.
  [[nodiscard]] virtual std::vector<RunningApplication> withBundleIdentifier(const std::string& identifier) const = 0;

  /// The one that has the user's attention; nothing when none has, or where nobody can tell.
  [[nodiscard]] virtual std::optional<RunningApplication> frontmost() const = 0;

  /// Calls `handler`, in a turn of its own, whenever another application came to the front, while the registration
  /// lives. Costs nothing while nobody observes.
  [[nodiscard]] virtual std::unique_ptr<Registration> observeActivation(Task handler) = 0;
};

}  // namespace dormel
