#include "tests/drawn/OpenWindows.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QKeyEvent>

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
    QKeyEvent event(type, key, modifiers);
    if (QWindow* focused = QGuiApplication::focusWindow()) QCoreApplication::sendEvent(focused, &event);
  }
}

QStringList OpenWindows::ringed() {
  QStringList found;
  visitWindows([&](DesktopWindow& window) {
    visit(window.contentItem(), [&](QQuickItem* item) {
      if (item->property("focusVisible").toBool()) found << item->property("text").toString();
    });
  });
  return found;
}

QQuickItem* OpenWindows::itemWithText(const QString& title, const QString& text) {
  QQuickItem* found = nullptr;
  visitWindows([&](DesktopWindow& window) {
    if (window.title() != title) return;
    visit(window.contentItem(), [&](QQuickItem* item) {
      if (found == nullptr && item->property("text").toString() == text) found = item;
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
