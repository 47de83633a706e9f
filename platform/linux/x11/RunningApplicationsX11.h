// The applications behind the windows of this display. Without a display, or a window manager that tells, there are
// none. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/RunningApplications.h"
#include "platform/common/HandlerList.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/ClientWindows.h"

namespace dormel::x11 {

/// The identifier of the application whose windows carry these two names.
using ApplicationNaming = std::function<std::string(const std::string& instance, const std::string& className)>;

class RunningApplicationsX11 final : public RunningApplications {
 public:
  /// `loop` outlives it.
  RunningApplicationsX11(RunLoop& loop, std::shared_ptr<Connection> connection);

  /// Until one is set, an application's identifier is the class of its windows.
  void setNaming(ApplicationNaming naming) { naming_ = std::move(naming); }

  [[nodiscard]] std::vector<RunningApplication> withBundleIdentifier(const std::string& identifier) const override;
  [[nodiscard]] std::optional<RunningApplication> frontmost() const override;
  [[nodiscard]] std::unique_ptr<Registration> observeActivation(Task handler) override;

 private:
  [[nodiscard]] RunningApplication application(const ClientWindow& window) const;

  std::shared_ptr<Connection> connection_;
  std::unique_ptr<ClientWindows> clients_;  // null without a display
  ApplicationNaming naming_;
  HandlerList<> observers_;
  Subscription subscription_;  // from the first observer on
  CoalescedTimer telling_;
};

}  // namespace dormel::x11
