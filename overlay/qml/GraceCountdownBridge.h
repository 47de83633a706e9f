// Hands the grace countdown's state to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <memory>

#include "overlay/GraceCountdownState.h"
#include "platform/linux/qt/StateBridge.h"

namespace dormel {

class GraceCountdownBridge : public StateBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the canvas")
  Q_PROPERTY(double graceProgress READ graceProgress NOTIFY changed)
  Q_PROPERTY(QColor urgencyColor READ urgencyColor NOTIFY changed)
  Q_PROPERTY(QString graceText READ graceText NOTIFY changed)

 public:
  explicit GraceCountdownBridge(std::shared_ptr<PaintedView> view);

  [[nodiscard]] double graceProgress() const { return state_.progress; }
  [[nodiscard]] QColor urgencyColor() const;
  [[nodiscard]] QString graceText() const { return QString::fromStdString(state_.text); }

 protected:
  bool take(std::string_view state) override;

 private:
  GraceCountdownState state_;
};

}  // namespace dormel
