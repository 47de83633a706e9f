// Hands one screen of the first run to its scene, as the list of its elements, top to bottom. Keeps its screen for as
// long as it is drawn, which is longer than it is the current one. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QAbstractListModel>
#include <QPointF>
#include <memory>
#include <vector>

#include "onboarding/OnbSpan.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class OnbWheel;

class BeatBridge : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  /// What the screen is about, for a screen reader: the first of its texts.
  Q_PROPERTY(QString name READ name CONSTANT)
  /// It has a wheel, which is turned from anywhere on it.
  Q_PROPERTY(bool turns READ turns CONSTANT)

 public:
  enum Role {
    kind = Qt::UserRole + 1,  ///< the name of OnbElement::Kind's value
    words,                    ///< plain: emphasis is left out
    markup,                   ///< the same with its emphasis as styled text; empty where it has none
    spans,                    ///< objects with `text` and `strong`, of a line
    parts,
    chosen,
    above,
    size,
    quiet,
    on,
    available,  ///< the element's `enabled`
  };

  explicit BeatBridge(std::shared_ptr<OnboardingScreen> screen);

  [[nodiscard]] const std::shared_ptr<OnboardingScreen>& screen() const { return screen_; }
  [[nodiscard]] QString name() const;
  [[nodiscard]] bool turns() const { return wheel_ != nullptr; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  /// A part of an element was pressed.
  Q_INVOKABLE void press(int element, int part) const;
  /// Presses the screen's button; false where there is none.
  Q_INVOKABLE bool pressButton() const;
  /// One row down (1) or up (-1), for arrow keys that the wheel did not see by itself; false where there is none.
  Q_INVOKABLE bool step(int by) const;
  /// A scroll event as the toolkit reports it: pixels where the device knows them, and eighths of a degree.
  /// `byTicks` says that it comes from a wheel rather than from a finger.
  Q_INVOKABLE void scroll(const QPointF& pixels, const QPointF& angle, bool byTicks) const;

 signals:
  void changed();

 private:
  std::shared_ptr<OnboardingScreen> screen_;
  OnbWheel* wheel_ = nullptr;
  Observation observation_;
};

/// Objects with `text` and `strong`. Spaces at the ends of pieces do not break, so that they keep their width.
[[nodiscard]] QVariantList spanList(const std::vector<OnbSpan>& spans);

}  // namespace dormel
