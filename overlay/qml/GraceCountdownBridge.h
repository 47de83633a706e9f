// Hands the grace countdown to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <memory>

#include "overlay/GraceCountdownView.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class GraceCountdownBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the canvas")
  Q_PROPERTY(double graceProgress READ graceProgress NOTIFY changed)
  Q_PROPERTY(QColor urgencyColor READ urgencyColor NOTIFY changed)
  Q_PROPERTY(QString graceText READ graceText NOTIFY changed)

 public:
  explicit GraceCountdownBridge(std::shared_ptr<GraceCountdownView> view);

  [[nodiscard]] QStringList plainLines() const override { return {graceText()}; }

  [[nodiscard]] double graceProgress() const { return view_->graceProgress(); }
  [[nodiscard]] QColor urgencyColor() const;
  [[nodiscard]] QString graceText() const { return QString::fromStdString(view_->graceText()); }

 private:
  std::shared_ptr<GraceCountdownView> view_;
  Observation observation_;
};

}  // namespace dormel
