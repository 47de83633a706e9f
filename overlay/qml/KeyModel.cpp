#include "overlay/qml/KeyModel.h"

#include "overlay/qml/QtColor.h"

namespace dormel {

void KeyModel::update(std::vector<KeyIndicator> keys) {
  while (keys_.size() > keys.size()) {
    const int last = static_cast<int>(keys_.size()) - 1;
    beginRemoveRows({}, last, last);
    keys_.pop_back();
    endRemoveRows();
  }
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const int row = static_cast<int>(i);
    if (i < keys_.size() && keys_[i].keyCode == keys[i].keyCode) {
      if (keys_[i] == keys[i]) continue;
      keys_[i] = std::move(keys[i]);
      emit dataChanged(index(row), index(row));
      continue;
    }
    if (i < keys_.size()) {
      beginRemoveRows({}, row, row);
      keys_.erase(keys_.begin() + row);
      endRemoveRows();
    }
    beginInsertRows({}, row, row);
    keys_.insert(keys_.begin() + row, std::move(keys[i]));
    endInsertRows();
  }
}

int KeyModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(keys_.size());
}

QVariant KeyModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const KeyIndicator& key = keys_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case label:
      return QString::fromStdString(key.label);
    case legend:
      return QString::fromStdString(key.legend);
    case capWidth:
      return key.width();
    case capHeight:
      return KeyIndicator::height();
    case labelSize:
      return key.labelSize();
    case labelColor:
      return toColor(key.labelColor());
    case fill:
      return toColor(key.fill());
    case border:
      return toColor(key.border());
    default:
      return {};
  }
}

QHash<int, QByteArray> KeyModel::roleNames() const {
  return {{label, "label"},         {legend, "legend"},         {capWidth, "capWidth"}, {capHeight, "capHeight"},
          {labelSize, "labelSize"}, {labelColor, "labelColor"}, {fill, "fill"},         {border, "border"}};
}

}  // namespace dormel
