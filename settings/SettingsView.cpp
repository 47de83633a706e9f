#include "settings/SettingsView.h"

#include <cstdint>
#include <utility>

#include "assistant/AssentaAssistant.h"
#include "core/Config.h"
#include "core/DebugLog.h"
#include "platform/Accessibility.h"
#include "platform/Bundle.h"
#include "platform/Defaults.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {
namespace {

constexpr Seconds REFRESH_INTERVAL = 2.0;
constexpr int UNLOCK_HOUR = 6;  // no screen offers another one

bool isTrusted() { return platform().accessibility.isProcessTrusted(); }

bool isBlockingNow() { return Config::isBlockingNow(platform().clock.now()); }

/// What leads to it may change on the way: a log-out may be what is left to do.
std::string permissionWords() {
  const PermissionWords words = platform().wording.permission();
  return words.granted + words.advice + words.settingsButton;
}

void trace(const std::string& line) { DebugLog::shared().append(line); }

}  // namespace

std::shared_ptr<SettingsView> SettingsView::create(Updater& updater, Hooks hooks) {
  std::shared_ptr<SettingsView> view(new SettingsView(updater, std::move(hooks)));
  view->axTimer_ = Timer::repeating(REFRESH_INTERVAL, [weak = std::weak_ptr(view)] {
    if (const auto self = weak.lock()) self->refresh();
  });
  return view;
}

SettingsView::SettingsView(Updater& updater, Hooks hooks)
    : updater_(updater),
      hooks_(std::move(hooks)),
      startHour_(this, Config::startHour()),
      axTrusted_(this, dormel::isTrusted()),
      permissionWords_(this, permissionWords()),
      enabled_(this, Config::blockingEnabled()),
      blockingNow_(this, isBlockingNow()),
      use24Hour_(this, Config::use24HourClock()) {}

void SettingsView::onAppear() {
  if (std::exchange(appeared_, true)) return;
  autoUpdates_ = updater_.automaticallyChecksForUpdates() && updater_.automaticallyDownloadsUpdates();
  updates_ = updater_.observe([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->followUpdater();
  });
  followUpdater();
}

void SettingsView::onDisappear() {
  if (!std::exchange(appeared_, false)) return;
  updates_.reset();
  AssentaAssistant::shared().dismiss();
}

void SettingsView::followUpdater() {
  canCheckForUpdates_ = updater_.canCheckForUpdates();
  updateStatus_ = updater_.status();
}

void SettingsView::refresh() {
  const bool trusted = dormel::isTrusted();
  if (trusted && !axTrusted_) {
    AssentaAssistant::shared().dismiss();
    hooks_.bringToFront();
  }
  axTrusted_ = trusted;
  permissionWords_ = permissionWords();
  lookAtTheHours();
}

void SettingsView::lookAtTheHours() { blockingNow_ = isBlockingNow(); }

bool SettingsView::store(const char* key, PropertyListValue value) {
  DefaultsStore& defaults = platform().defaults;
  const auto before = defaults.object(key);
  defaults.set(key, std::move(value));
  const bool kept = defaults.synchronize();
  if (!kept) {
    // The night is another process: what holds only here would be no setting but a promise that is broken.
    if (before) {
      defaults.set(key, *before);
    } else {
      defaults.remove(key);
    }
  }
  unsaved_ = kept ? std::string() : std::string(key);
  return kept;
}

void SettingsView::setEnabled(bool enabled) {
  lookAtTheHours();  // they may have begun since the last look
  if (enabled == enabled_ || (!enabled && isLockedIn())) return;
  if (!store(defaultsKey::blockingEnabled, {enabled})) return;
  enabled_ = enabled;
  trace(std::string("dormel ") + (enabled ? "enabled" : "disabled") + " by user");
}

std::string SettingsView::statusTitle() const { return enabled_ ? translate("Enabled") : translate("Disabled"); }

std::string SettingsView::statusText() const {
  return enabled_ ? translate("Locks your screen on schedule.") : translate("Dormel won't lock your screen.");
}

void SettingsView::setStartHour(int hour) {
  if (hour == startHour_) return;
  startHour_ = hour;
  commitStartHour();
}

void SettingsView::commitStartHour() {
  lookAtTheHours();
  if (isLockedIn()) {
    startHour_ = Config::startHour();
    return;
  }
  const int hour = startHour_;
  if (!store(defaultsKey::blockStartHour, {std::int64_t{hour}})) {
    startHour_ = Config::startHour();
    return;
  }
  platform().defaults.set(defaultsKey::blockEndHour, {std::int64_t{UNLOCK_HOUR}});
  if (Config::onboardingComplete() && !hooks_.installAgent()) hooks_.onAgentNotInstalled();
  trace("schedule updated → lock " + hourLabel(hour));
}

std::vector<int> SettingsView::startHourOptions() const { return Config::startHourOptions(startHour_); }

std::string SettingsView::scheduleText() const {
  return translate("Locks %1, unlocks %2.", {hourLabel(startHour_), hourLabel(UNLOCK_HOUR)});
}

void SettingsView::setUse24Hour(bool on) {
  if (on == use24Hour_ || !store(defaultsKey::use24HourClock, {on})) return;
  use24Hour_ = on;
}

std::string SettingsView::permissionName() { return platform().wording.permission().name; }

std::string SettingsView::permissionButton() const {
  return axTrusted_ ? "" : platform().wording.permission().settingsButton;
}

std::string SettingsView::permissionText() const {
  const PermissionWords words = platform().wording.permission();
  if (axTrusted_) return words.granted;
  return words.advice.empty() ? words.missing : words.missing + " " + words.advice;
}

void SettingsView::openAccessibilitySettings(const std::optional<Rect>& from) const {
  AssentaAssistant::shared().present(AssentaPanel::accessibility, AssentaHostApp::current(platform().bundle), from);
}

void SettingsView::setAutoUpdates(bool on) {
  if (on == autoUpdates_) return;
  autoUpdates_ = on;
  updater_.setAutomaticallyChecksForUpdates(on);
  updater_.setAutomaticallyDownloadsUpdates(on);
  trace(std::string("automatic updates ") + (on ? "on" : "off") + " by user");
}

std::string SettingsView::autoUpdatesText() const {
  if (!canUpdate()) {
    return platform().bundle.isPackaged()
               ? translate("Updates come with your system's updates.")
               : translate("This copy doesn't look for updates. To update it, open a newer copy.");
  }
  return autoUpdates_ ? translate("Dormel updates itself overnight. Nothing to click.")
                      : translate("Updates arrive only when you check by hand.");
}

std::string SettingsView::versionText() const {
  const Bundle& bundle = platform().bundle;
  return translate("%1 (build %2)", {bundle.info("CFBundleShortVersionString").value_or("1.0"),
                                     bundle.info("CFBundleVersion").value_or("?")});
}

}  // namespace dormel
