// The settings window: whether the nightly lock is on and when it begins, the clock format of the lock screen, the
// permission, updates, and the way to uninstall. Its state starts from the settings store when it is made and is not
// read again, but for the permission and the blocking hours, which it looks at every two seconds. While the lock is on
// and the hours are running ("locked in"), it refuses whatever would loosen the lock: the control springs back and a
// note says why. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Observable.h"
#include "platform/Geometry.h"
#include "platform/PropertyList.h"
#include "platform/RunLoop.h"
#include "platform/Texts.h"
#include "platform/Updater.h"
#include "platform/View.h"

namespace dormel {

class SettingsView : public View, public Observable, public std::enable_shared_from_this<SettingsView> {
 public:
  /// What the window's owner does for it.
  struct Hooks {
    std::function<void()> onTestNow;
    std::function<void()> onPreviewOnboarding;  ///< may be empty: then nothing offers it
    std::function<void()> onUninstall;
    std::function<bool()> installAgent;  ///< arms the scheduler with the stored hour; false when it could not
    std::function<void()> onAgentNotInstalled;
    std::function<void()> bringToFront;    ///< activates the application, this window in front
    std::function<void()> onShowNights{};  ///< may be empty: then nothing offers it
  };

  /// `updater` outlives the view.
  [[nodiscard]] static std::shared_ptr<SettingsView> create(Updater& updater, Hooks hooks);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::settings; }
  /// The window comes on screen: from here to `onDisappear` the updater is followed. Calling either twice is harmless.
  void onAppear();
  /// The window goes; so does the guide to the permission.
  void onDisappear();

  /// What the user changed last could not be written, so it is as it was before: the controls show what is stored.
  [[nodiscard]] bool isUnsaved(const char* key) const { return *unsaved_ == key; }
  /// Said beside the control of that key.
  [[nodiscard]] static std::string unsavedText() {
    return translate("Your settings can't be saved. Nothing was changed.");
  }

  [[nodiscard]] bool isEnabled() const { return enabled_; }
  /// The master switch. Switching off while locked in does nothing.
  void setEnabled(bool enabled);
  /// The lock is on and the blocking hours are running.
  [[nodiscard]] bool isLockedIn() const { return enabled_ && blockingNow_; }
  [[nodiscard]] std::string statusTitle() const;
  [[nodiscard]] std::string statusText() const;

  [[nodiscard]] int startHour() const { return startHour_; }
  /// Stores the hour and arms the scheduler for it; goes back to what is stored while locked in.
  void setStartHour(int hour);
  /// The hours that the picker offers, the current one among them.
  [[nodiscard]] std::vector<int> startHourOptions() const;
  /// "Locks 10:00 PM, unlocks 6:00 AM."
  [[nodiscard]] std::string scheduleText() const;

  [[nodiscard]] bool use24Hour() const { return use24Hour_; }
  void setUse24Hour(bool on);

  [[nodiscard]] bool isTrusted() const { return axTrusted_; }
  [[nodiscard]] static std::string permissionName();
  [[nodiscard]] std::string permissionText() const;
  /// Of the button that leads to it; empty where there is none.
  [[nodiscard]] std::string permissionButton() const;
  /// Leads to the permission. `from` is where on the screens the user asked for it, if that is known.
  void openAccessibilitySettings(const std::optional<Rect>& from) const;

  /// Whether this copy can be updated at all: otherwise the text says so, and nothing is offered.
  [[nodiscard]] bool canUpdate() const { return updater_.hasFeed(); }
  [[nodiscard]] bool autoUpdates() const { return autoUpdates_; }
  void setAutoUpdates(bool on);
  [[nodiscard]] std::string autoUpdatesText() const;
  [[nodiscard]] bool canCheckForUpdates() const { return canCheckForUpdates_; }
  void checkForUpdates() { updater_.checkForUpdates(); }
  /// One line about the last check or download; empty when there is nothing to say.
  [[nodiscard]] const std::string& updateStatus() const { return *updateStatus_; }

  /// "1.0 (build 15)"
  [[nodiscard]] std::string versionText() const;
  void testNow() const { hooks_.onTestNow(); }
  [[nodiscard]] bool canPreviewOnboarding() const { return hooks_.onPreviewOnboarding != nullptr; }
  void previewOnboarding() const { hooks_.onPreviewOnboarding(); }
  [[nodiscard]] bool canShowNights() const { return hooks_.onShowNights != nullptr; }
  void showNights() const { hooks_.onShowNights(); }
  void uninstall() const { hooks_.onUninstall(); }

 private:
  SettingsView(Updater& updater, Hooks hooks);
  void refresh();
  void lookAtTheHours();
  void commitStartHour();
  bool store(const char* key, PropertyListValue value);
  void followUpdater();

  Updater& updater_;
  Hooks hooks_;
  Published<int> startHour_;
  Published<bool> axTrusted_;
  Published<std::string> permissionWords_;  // all of them: they may change on the way to it
  Published<bool> enabled_;
  Published<bool> blockingNow_;
  Published<bool> use24Hour_;
  Published<std::string> unsaved_{this, {}};  // the key
  Published<bool> autoUpdates_{this, true};
  Published<bool> canCheckForUpdates_{this, false};
  Published<std::string> updateStatus_{this, {}};
  Timer axTimer_;
  std::unique_ptr<Registration> updates_;
  bool appeared_ = false;
};

}  // namespace dormel
