// The row of key caps as a list model. A cap's identity is its physical key: while the key stays where it is in the
// row, its delegate lives on and animates; another key in its place is another cap. Main thread only.
#pragma once

#include <QAbstractListModel>
#include <vector>

#include "overlay/BlockerOverlayState.h"

namespace dormel {

class KeyModel : public QAbstractListModel {
  Q_OBJECT

 public:
  using QAbstractListModel::QAbstractListModel;

  void update(std::vector<KeyIndicator> keys);

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

 private:
  enum Role { label = Qt::UserRole, legend, capWidth, capHeight, labelSize, labelColor, fill, border };

  std::vector<KeyIndicator> keys_;
};

}  // namespace dormel
