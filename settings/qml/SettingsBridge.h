// Hands the settings to their QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickItem>
#include <memory>

#include "core/Config.h"
#include "platform/linux/qt/ViewBridge.h"
#include "settings/SettingsView.h"

namespace dormel {

class SettingsBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(bool lockEnabled READ lockEnabled NOTIFY changed)
  Q_PROPERTY(bool lockedIn READ lockedIn NOTIFY changed)
  Q_PROPERTY(QString statusTitle READ statusTitle NOTIFY changed)
  Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
  Q_PROPERTY(QStringList startHours READ startHours NOTIFY changed)
  Q_PROPERTY(int startHour READ startHour NOTIFY changed)
  Q_PROPERTY(QString scheduleText READ scheduleText NOTIFY changed)
  Q_PROPERTY(bool use24Hour READ use24Hour NOTIFY changed)
  Q_PROPERTY(bool trusted READ trusted NOTIFY changed)
  Q_PROPERTY(QString permissionName READ permissionName NOTIFY changed)
  Q_PROPERTY(QString permissionText READ permissionText NOTIFY changed)
  Q_PROPERTY(QString permissionButton READ permissionButton NOTIFY changed)
  /// Beside the control whose change could not be saved; empty otherwise.
  Q_PROPERTY(QString switchUnsaved READ switchUnsaved NOTIFY changed)
  Q_PROPERTY(QString hourUnsaved READ hourUnsaved NOTIFY changed)
  Q_PROPERTY(QString clockUnsaved READ clockUnsaved NOTIFY changed)
  Q_PROPERTY(bool canUpdate READ canUpdate CONSTANT)
  Q_PROPERTY(bool autoUpdates READ autoUpdates NOTIFY changed)
  Q_PROPERTY(QString autoUpdatesText READ autoUpdatesText NOTIFY changed)
  Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY changed)
  Q_PROPERTY(QString updateStatus READ updateStatus NOTIFY changed)
  Q_PROPERTY(QString versionText READ versionText CONSTANT)
  Q_PROPERTY(bool canPreviewOnboarding READ canPreviewOnboarding CONSTANT)
  Q_PROPERTY(bool canShowNights READ canShowNights CONSTANT)

 public:
  explicit SettingsBridge(std::shared_ptr<SettingsView> settings);
  SettingsBridge(const SettingsBridge&) = delete;
  SettingsBridge& operator=(const SettingsBridge&) = delete;
  ~SettingsBridge() override;

  [[nodiscard]] bool lockEnabled() const { return settings_->isEnabled(); }
  [[nodiscard]] bool lockedIn() const { return settings_->isLockedIn(); }
  [[nodiscard]] QString statusTitle() const { return QString::fromStdString(settings_->statusTitle()); }
  [[nodiscard]] QString statusText() const { return QString::fromStdString(settings_->statusText()); }
  /// The labels of the hours that can be chosen, and where among them the current one is.
  [[nodiscard]] QStringList startHours() const;
  [[nodiscard]] int startHour() const;
  [[nodiscard]] QString scheduleText() const { return QString::fromStdString(settings_->scheduleText()); }
  [[nodiscard]] bool use24Hour() const { return settings_->use24Hour(); }
  [[nodiscard]] bool trusted() const { return settings_->isTrusted(); }
  [[nodiscard]] QString permissionText() const { return QString::fromStdString(settings_->permissionText()); }
  [[nodiscard]] static QString permissionName() { return QString::fromStdString(SettingsView::permissionName()); }
  [[nodiscard]] QString permissionButton() const { return QString::fromStdString(settings_->permissionButton()); }
  [[nodiscard]] QString switchUnsaved() const { return unsaved(defaultsKey::blockingEnabled); }
  [[nodiscard]] QString hourUnsaved() const { return unsaved(defaultsKey::blockStartHour); }
  [[nodiscard]] QString clockUnsaved() const { return unsaved(defaultsKey::use24HourClock); }
  [[nodiscard]] bool canUpdate() const { return settings_->canUpdate(); }
  [[nodiscard]] bool autoUpdates() const { return settings_->autoUpdates(); }
  [[nodiscard]] QString autoUpdatesText() const { return QString::fromStdString(settings_->autoUpdatesText()); }
  [[nodiscard]] bool canCheckForUpdates() const { return settings_->canCheckForUpdates(); }
  [[nodiscard]] QString updateStatus() const { return QString::fromStdString(settings_->updateStatus()); }
  [[nodiscard]] QString versionText() const { return QString::fromStdString(settings_->versionText()); }
  [[nodiscard]] bool canPreviewOnboarding() const { return settings_->canPreviewOnboarding(); }
  [[nodiscard]] bool canShowNights() const { return settings_->canShowNights(); }

  Q_INVOKABLE void setLockEnabled(bool on) { settings_->setEnabled(on); }
  Q_INVOKABLE void chooseStartHour(int index);
  Q_INVOKABLE void setUse24Hour(bool on) { settings_->setUse24Hour(on); }
  /// `from` is the control that asked for it: the guide starts there.
  Q_INVOKABLE void openAccessibilitySettings(QQuickItem* from);
  Q_INVOKABLE void setAutoUpdates(bool on) { settings_->setAutoUpdates(on); }
  Q_INVOKABLE void checkForUpdates() { settings_->checkForUpdates(); }
  Q_INVOKABLE void testNow() { settings_->testNow(); }
  Q_INVOKABLE void previewOnboarding() { settings_->previewOnboarding(); }
  Q_INVOKABLE void showNights() { settings_->showNights(); }
  Q_INVOKABLE void uninstall() { settings_->uninstall(); }

 protected:
  void appear() override { settings_->onAppear(); }

 private:
  [[nodiscard]] QString unsaved(const char* key) const {
    return settings_->isUnsaved(key) ? QString::fromStdString(SettingsView::unsavedText()) : QString();
  }

  std::shared_ptr<SettingsView> settings_;
  Observation observation_;
};

}  // namespace dormel
