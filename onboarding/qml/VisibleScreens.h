// The screens that can be seen now: those that are leaving, the oldest first, and last the current one. Main thread
// only.
#pragma once

#include <QAbstractListModel>
#include <memory>
#include <vector>

#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class VisibleScreens : public QAbstractListModel {
  Q_OBJECT

 public:
  enum Role {
    beat = Qt::UserRole + 1,  ///< the bridge
    gone,                     ///< it is leaving
  };

  /// Brings a screen on; whichever was current starts to leave. Nothing happens when it is the current one already.
  void enter(const std::shared_ptr<OnboardingScreen>& screen);
  /// The screen cannot be seen any more.
  void forget(const QObject* bridge);

  [[nodiscard]] const BeatBridge* current() const { return beats_.empty() ? nullptr : beats_.back().get(); }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

 private:
  std::vector<std::unique_ptr<BeatBridge>> beats_;
};

}  // namespace dormel
