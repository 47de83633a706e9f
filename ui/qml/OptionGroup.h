// Options of which the keyboard is at one: the Pressables below it, in the order in which they stand. The arrow keys,
// Home and End move within the group, and typing the beginning of an option's `text` goes to the next such one. It
// draws nothing. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickItem>
#include <vector>

#include "ui/qml/Pressable.h"

namespace dormel {

class OptionGroup : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  /// Whether moving to an option chooses it, as in a row of which one is always chosen.
  Q_PROPERTY(bool choosesByMoving MEMBER choosesByMoving_)

 public:
  using QQuickItem::QQuickItem;

  /// Moves the keyboard to an option; one that does not exist is ignored.
  Q_INVOKABLE void focusOption(int index);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  [[nodiscard]] std::vector<Pressable*> options() const;

  bool choosesByMoving_ = false;
};

}  // namespace dormel
