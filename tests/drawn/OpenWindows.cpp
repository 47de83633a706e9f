#include "tests/drawn/OpenWindows.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>

#include "ui/qml/Pressable.h"

namespace dormel {
namespace {

void visit(QQuickItem* item, const std::function<void(QQuickItem*)>& see) {
  see(item);
  for (QQuickItem* child : item->childItems()) visit(child, see);
}

void visitWindows(const std::function<void(DesktopWindow&)>& see) {
  for (QWindow* window : QGuiApplication::allWindows()) {
    auto* ours = qobject_cast<DesktopWindow*>(window);
    if (ours != nullptr && ours->isVisible()) see(*ours);
  }
}

}  // namespace

void OpenWindows::settle() {
  for (int i = 0; i < 3; ++i) {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    machine.settle();
  }
}

void OpenWindows::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QKeyEvent event(type, key, modifiers, key < Qt::Key_Escape ? QString(QChar(key)) : QString());
    if (QWindow* focused = QGuiApplication::focusWindow()) QCoreApplication::sendEvent(focused, &event);
  }
}

QStringList OpenWindows::ringed() {
  QStringList found;
  visitWindows([&](DesktopWindow& window) {
    visit(window.contentItem(), [&](QQuickItem* item) {
      if (!item->property("focusVisible").toBool()) return;
      const QString text = item->property("text").toString();
      found << (text.isEmpty() ? item->property("name").toString() : text);
    });
  });
  return found;
}

QQuickItem* OpenWindows::itemWithText(const QString& title, const QString& text) {
  QQuickItem* found = nullptr;
  visitWindows([&](DesktopWindow& window) {
    if (window.title() != title) return;
    visit(window.contentItem(), [&](QQuickItem* item) {
      const bool is = item->property("text").toString() == text || item->property("name").toString() == text;
      const bool isBetter = found == nullptr || (qobject_cast<Pressable*>(item) && !qobject_cast<Pressable*>(found));
      if (is && isBetter) found = item;
    });
  });
  return found;
}

int OpenWindows::openWindows() {
  int count = 0;
  visitWindows([&](DesktopWindow&) { ++count; });
  return count;
}

}  // namespace dormel
