// The program's ordinary windows on the offscreen platform, with keys pressed in them.
#pragma once

#include <QQuickItem>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/qt/DesktopWindow.h"
#include "platform/linux/qt/WindowGroup.h"
#include "tests/drawn/DrawnMachine.h"

namespace dormel {

class OpenWindows : public DrawnMachine {
 public:
  OpenWindows() : group(std::make_shared<WindowGroup>(stage, WindowHelp{})) {}
  ~OpenWindows() { settle(); }

  /// Lets the toolkit and the machine do what they were left with.
  void settle();
  /// A press and its release in the window that has the focus.
  void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

  /// The texts (or names) of the controls that wear a focus ring now, over all windows.
  [[nodiscard]] static QStringList ringed();
  /// The control, or else the first item, with that text or name in the window of that title; null when there is none.
  [[nodiscard]] static QQuickItem* itemWithText(const QString& title, const QString& text);
  [[nodiscard]] static int openWindows();

  std::shared_ptr<WindowGroup> group;
};

}  // namespace dormel
