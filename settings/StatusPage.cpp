#include "settings/StatusPage.h"

#include <utility>

#include "core/Config.h"
#include "platform/Accessibility.h"
#include "platform/Platform.h"
#include "platform/Windows.h"

namespace dormel {
namespace {

constexpr Seconds REFRESH_INTERVAL = 2.0;

}  // namespace

std::string hourLabel(int hour) {
  const int figure = hour % 12 == 0 ? 12 : hour % 12;
  return std::to_string(figure) + ":00 " + (hour < 12 ? "AM" : "PM");
}

std::shared_ptr<StatusPage> StatusPage::create(Actions actions) {
  return std::shared_ptr<StatusPage>(new StatusPage(std::move(actions)));
}

StatusPage::StatusPage(Actions actions) : actions_(std::move(actions)) {}

StatusPage::Facts StatusPage::look() {
  const bool complete = Config::onboardingComplete();
  const bool enabled = Config::blockingEnabled();
  return {platform().accessibility.isProcessTrusted(),
          complete && enabled && Config::isBlockingNow(platform().clock.now()),
          complete,
          enabled,
          Config::startHour(),
          Config::endHour()};
}

void StatusPage::onAppear() {
  if (refreshTimer_) return;
  refreshTimer_ = Timer::repeating(REFRESH_INTERVAL, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->seen_ = look();
  });
}

bool StatusPage::isArmed() const { return Config::onboardingComplete() && Config::blockingEnabled(); }

std::string StatusPage::statusTitle() const {
  if (!Config::onboardingComplete()) return "Not set up";
  return Config::blockingEnabled() ? "Enabled" : "Disabled";
}

std::string StatusPage::statusText() const {
  if (!Config::onboardingComplete()) return "Dormel --setup arms the nightly lock.";
  return Config::blockingEnabled() ? "Locks your screen on schedule." : "Dormel won't lock your screen.";
}

std::string StatusPage::scheduleText() const {
  return "Locks " + hourLabel(Config::startHour()) + ", unlocks " + hourLabel(Config::endHour()) + ".";
}

std::string StatusPage::permissionText() const {
  return seen_->trusted ? "Granted. Dormel can lock the screen." : "Required. Dormel can't lock the screen.";
}

std::string StatusPage::versionText() const {
  const Bundle& bundle = platform().bundle;
  return bundle.info("CFBundleShortVersionString").value_or("1.0") + " (build " +
         bundle.info("CFBundleVersion").value_or("?") + ")";
}

}  // namespace dormel
