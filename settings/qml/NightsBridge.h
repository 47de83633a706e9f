// Hands the page "Your nights" to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QList>
#include <QString>
#include <memory>

#include "platform/linux/qt/ViewBridge.h"
#include "settings/NightsView.h"

namespace dormel {

class NightsBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  /// One for each night, oldest first, in columns of seven of which the first begins at `firstRow`.
  Q_PROPERTY(QStringList sentences READ sentences NOTIFY changed)
  /// How often each was opened; -1 where no lock is recorded.
  Q_PROPERTY(QList<int> unlocks READ unlocks NOTIFY changed)
  Q_PROPERTY(int firstRow READ firstRow NOTIFY changed)
  Q_PROPERTY(int columns READ columns NOTIFY changed)
  Q_PROPERTY(QStringList months READ months NOTIFY changed)
  Q_PROPERTY(QList<int> monthColumns READ monthColumns NOTIFY changed)
  Q_PROPERTY(QStringList figures READ figures NOTIFY changed)
  Q_PROPERTY(QStringList figureTexts READ figureTexts NOTIFY changed)
  Q_PROPERTY(QString note READ note NOTIFY changed)

 public:
  explicit NightsBridge(std::shared_ptr<NightsView> nights);

  [[nodiscard]] QStringList sentences() const;
  [[nodiscard]] QList<int> unlocks() const;
  [[nodiscard]] int firstRow() const { return nights_->history().nights.front().weekday(); }
  [[nodiscard]] int columns() const { return nights_->history().columns(); }
  [[nodiscard]] QStringList months() const;
  [[nodiscard]] QList<int> monthColumns() const;
  [[nodiscard]] QStringList figures() const;
  [[nodiscard]] QStringList figureTexts() const;
  [[nodiscard]] QString note() const { return QString::fromStdString(nights_->note()); }

 private:
  std::shared_ptr<NightsView> nights_;
  Observation observation_;
};

}  // namespace dormel
