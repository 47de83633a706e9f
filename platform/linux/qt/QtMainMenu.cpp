#include "platform/linux/qt/QtMainMenu.h"

#include <QGuiApplication>
#include <QMetaMethod>
#include <utility>

#include "platform/Texts.h"
#include "platform/linux/qt/AboutView.h"

namespace dormel {
namespace {

/// The method by which a control that edits text carries the command out; null for other commands.
const char* editingMethod(MenuCommand command) {
  switch (command) {
    case MenuCommand::undo:
      return "undo()";
    case MenuCommand::redo:
      return "redo()";
    case MenuCommand::cut:
      return "cut()";
    case MenuCommand::copy:
      return "copy()";
    case MenuCommand::paste:
      return "paste()";
    case MenuCommand::deleteSelection:
      return "remove(int,int)";
    case MenuCommand::selectAll:
      return "selectAll()";
    default:
      return nullptr;
  }
}

/// The focused control's method for an editing command; invalid when it has none.
QMetaMethod editing(MenuCommand command) {
  const QObject* focused = QGuiApplication::focusObject();
  const char* name = editingMethod(command);
  if (focused == nullptr || name == nullptr) return {};
  return focused->metaObject()->method(focused->metaObject()->indexOfMethod(name));
}

void edit(MenuCommand command) {
  QObject* focused = QGuiApplication::focusObject();
  if (command == MenuCommand::deleteSelection) {
    editing(command).invoke(focused, Q_ARG(int, focused->property("selectionStart").toInt()),
                            Q_ARG(int, focused->property("selectionEnd").toInt()));
  } else {
    editing(command).invoke(focused);
  }
}

bool matches(const MenuItem& item, const QKeyEvent& press) {
  if (item.key.size() != 1) return false;
  Qt::KeyboardModifiers wanted = Qt::ControlModifier;
  if (item.withShift) wanted |= Qt::ShiftModifier;
  if (item.withOption) wanted |= Qt::AltModifier;
  const Qt::KeyboardModifiers held = press.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
  return held == wanted && press.key() == QChar(QLatin1Char(item.key.front())).toUpper().unicode();
}

}  // namespace

QtMainMenu::QtMainMenu(std::shared_ptr<WindowGroup> group, OtherApplications others)
    : group_(std::move(group)), others_(std::move(others)) {}

void QtMainMenu::install(const std::vector<Menu>& menus, std::size_t windows,
                         std::function<void(MenuCommand)> onCommand) {
  menus_ = menus;
  onCommand_ = std::move(onCommand);
  group_->setShortcuts([this](const QKeyEvent& press) { return takes(press); });
  exported_ = ExportedMenuBar::create(
      menus_, windows, [this](MenuCommand command) { perform(command); },
      [this](MenuCommand command) { return canPerform(command); });
  if (!exported_) return;
  group_->setOnMainWindow([this](DesktopWindow& window) {
    exported_->attach(window, [&window] { window.bringToFront(); });
    exported_->refresh();
  });
  const auto refresh = [this] { exported_->refresh(); };
  connect(qGuiApp, &QGuiApplication::focusObjectChanged, this, refresh);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, refresh);
}

bool QtMainMenu::canPerform(MenuCommand command) const {
  const DesktopWindow* window = group_->mainWindow();
  switch (command) {
    case MenuCommand::separator:
      return false;
    case MenuCommand::quit:
      return true;
    case MenuCommand::about:
      return !group_->isAlertOpen();
    case MenuCommand::hide:
    case MenuCommand::closeWindow:
    case MenuCommand::minimizeWindow:
      return !group_->isAlertOpen() && window != nullptr && window->isVisible();
    case MenuCommand::hideOthers:
      return static_cast<bool>(others_.hide);
    case MenuCommand::showAll:
      return static_cast<bool>(others_.show);
    default:
      return editing(command).isValid();
  }
}

void QtMainMenu::perform(MenuCommand command) {
  if (!canPerform(command)) return;
  switch (command) {
    case MenuCommand::about:
      showAbout();
      break;
    case MenuCommand::quit:
      onCommand_(command);
      break;
    case MenuCommand::closeWindow: {
      QWindow* focused = QGuiApplication::focusWindow();
      QWindow* window = focused != nullptr ? focused : group_->mainWindow();
      window->close();
      break;
    }
    case MenuCommand::hide:
    case MenuCommand::minimizeWindow:
      group_->mainWindow()->showMinimized();
      break;
    case MenuCommand::hideOthers:
      others_.hide();
      break;
    case MenuCommand::showAll:
      others_.show();
      break;
    default:
      edit(command);
      break;
  }
}

bool QtMainMenu::takes(const QKeyEvent& press) {
  for (const Menu& menu : menus_) {
    for (const MenuItem& item : menu.items) {
      if (!matches(item, press) || !canPerform(item.command)) continue;
      if (!press.isAutoRepeat()) perform(item.command);
      return true;
    }
  }
  return false;
}

void QtMainMenu::showAbout() {
  if (!about_) {
    about_.reset(new DesktopWindow(group_, std::make_shared<AboutView>(), Qt::Dialog | Qt::WindowCloseButtonHint));
    about_->setTitle(QString::fromStdString(translate("About Dormel")));
    about_->fixSize();
    about_->wearFrame(false);
    about_->setTransientParent(group_->mainWindow());
    about_->centre(group_->mainWindow());
    about_->setOnCloseRequest([this] { about_.reset(); });
  }
  about_->bringToFront();
}

}  // namespace dormel
