// Hands the status page to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <memory>

#include "platform/linux/qt/ViewBridge.h"
#include "settings/StatusPage.h"

namespace dormel {

class StatusPageBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(bool armed READ armed NOTIFY changed)
  Q_PROPERTY(QString statusTitle READ statusTitle NOTIFY changed)
  Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
  Q_PROPERTY(QString scheduleText READ scheduleText NOTIFY changed)
  Q_PROPERTY(bool trusted READ trusted NOTIFY changed)
  Q_PROPERTY(QString permissionText READ permissionText NOTIFY changed)
  Q_PROPERTY(QString versionText READ versionText CONSTANT)
  Q_PROPERTY(bool lockedIn READ lockedIn NOTIFY changed)
  Q_PROPERTY(bool canRunDemo READ canRunDemo NOTIFY changed)

 public:
  explicit StatusPageBridge(std::shared_ptr<StatusPage> page);

  [[nodiscard]] QStringList plainLines() const override;

  [[nodiscard]] bool armed() const { return page_->isArmed(); }
  [[nodiscard]] QString statusTitle() const { return QString::fromStdString(page_->statusTitle()); }
  [[nodiscard]] QString statusText() const { return QString::fromStdString(page_->statusText()); }
  [[nodiscard]] QString scheduleText() const { return QString::fromStdString(page_->scheduleText()); }
  [[nodiscard]] bool trusted() const { return page_->isTrusted(); }
  [[nodiscard]] QString permissionText() const { return QString::fromStdString(page_->permissionText()); }
  [[nodiscard]] QString versionText() const { return QString::fromStdString(page_->versionText()); }
  [[nodiscard]] bool lockedIn() const { return page_->isLockedIn(); }
  [[nodiscard]] bool canRunDemo() const { return page_->canRunDemo(); }

  Q_INVOKABLE void testRun() { page_->testRun(); }
  Q_INVOKABLE void demo() { page_->demo(); }
  Q_INVOKABLE void uninstall() { page_->uninstall(); }
  Q_INVOKABLE void openAccessibilitySettings() { page_->openAccessibilitySettings(); }

 protected:
  void appear() override { page_->onAppear(); }

 private:
  std::shared_ptr<StatusPage> page_;
  Observation observation_;
};

}  // namespace dormel
