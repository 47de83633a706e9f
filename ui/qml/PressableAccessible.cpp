#include "ui/qml/PressableAccessible.h"

#include <QtQuick/private/qaccessiblequickitem_p.h>
#include <QAccessible>

#include "ui/qml/Pressable.h"

namespace dormel {
namespace {

class PressableAccessible : public QAccessibleQuickItem {
 public:
  using QAccessibleQuickItem::QAccessibleQuickItem;

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleQuickItem::state();
    state.disabled = !item()->isEnabled();
    const QVariant open = item()->property("open");
    state.expandable = open.isValid();
    state.expanded = open.toBool();
    return state;
  }
};

QAccessibleInterface* make(const QString& className, QObject* object) {
  if (className != QLatin1String(Pressable::staticMetaObject.className())) return nullptr;
  return new PressableAccessible(static_cast<Pressable*>(object));
}

}  // namespace

void installPressableAccessible() { QAccessible::installFactory(make); }

}  // namespace dormel
