#include "platform/linux/x11/RunningApplicationsX11.h"

#include <algorithm>
#include <utility>

namespace dormel::x11 {

RunningApplicationsX11::RunningApplicationsX11(RunLoop& loop, std::shared_ptr<Connection> connection)
    : connection_(std::move(connection)),
      clients_(connection_ ? std::make_unique<ClientWindows>(connection_) : nullptr),
      naming_([](const std::string& /*instance*/, const std::string& className) { return className; }),
      telling_(loop, [this] { observers_.call(); }) {}

RunningApplication RunningApplicationsX11::application(const ClientWindow& window) const {
  return {window.pid, naming_(window.instance, window.className),
          window.skipsTaskbar ? ActivationPolicy::accessory : ActivationPolicy::regular};
}

std::vector<RunningApplication> RunningApplicationsX11::withBundleIdentifier(const std::string& identifier) const {
  std::vector<RunningApplication> found;
  if (!clients_) return found;
  for (const ClientWindow& window : clients_->all()) {
    RunningApplication one = application(window);
    if (one.bundleIdentifier != identifier) continue;
    const auto known = std::find_if(found.begin(), found.end(), [&](const RunningApplication& other) {
      return other.processIdentifier == one.processIdentifier;
    });
    if (known == found.end()) {
      found.push_back(std::move(one));
    } else if (one.activationPolicy == ActivationPolicy::regular) {
      known->activationPolicy = ActivationPolicy::regular;  // one window in the task switcher makes it so
    }
  }
  return found;
}

std::optional<RunningApplication> RunningApplicationsX11::frontmost() const {
  const auto window = clients_ ? clients_->active() : std::nullopt;
  return window ? std::optional(application(*window)) : std::nullopt;
}

std::unique_ptr<Registration> RunningApplicationsX11::observeActivation(Task handler) {
  if (connection_ && !subscription_) {
    connection_->selectOnRoot(XCB_EVENT_MASK_PROPERTY_CHANGE);
    subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) {
      if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY || observers_.size() == 0) return;
      const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      // From one window to the next the focus may pass through none: what counts is where it is when all that has
      // arrived is handled.
      if (notify.window == connection_->root() && notify.atom == connection_->atom("_NET_ACTIVE_WINDOW"))
        telling_.ask();
    });
  }
  return observers_.add(std::move(handler));
}

}  // namespace dormel::x11
