// Hands an alert to its QML scene. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QStringList>
#include <memory>

#include "platform/linux/qt/AlertView.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class AlertBridge : public ViewBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the stage")
  Q_PROPERTY(QString message READ message CONSTANT)
  Q_PROPERTY(QString informativeText READ informativeText CONSTANT)
  Q_PROPERTY(QStringList buttons READ buttons CONSTANT)
  /// A warning or worse.
  Q_PROPERTY(bool serious READ serious CONSTANT)

 public:
  explicit AlertBridge(std::shared_ptr<AlertView> view);

  [[nodiscard]] QString message() const;
  [[nodiscard]] QString informativeText() const;
  [[nodiscard]] QStringList buttons() const;
  [[nodiscard]] bool serious() const;

  Q_INVOKABLE void answer(int button);
  /// Presses the cancelling button; false when there is none.
  Q_INVOKABLE bool cancel();

 private:
  std::shared_ptr<AlertView> view_;
};

}  // namespace dormel
