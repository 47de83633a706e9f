#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QTemporaryFile>

#include "app/MainMenuItems.h"
#include "platform/linux/qt/QtAlerts.h"
#include "platform/linux/qt/QtMainMenu.h"
#include "platform/linux/qt/QtMainWindows.h"
#include "settings/SettingsView.h"
#include "tests/drawn/OpenWindows.h"

namespace dormel {
namespace {

class MainWindowTest : public testing::Test {
 protected:
  MainWindowTest() {
    menu.install(mainMenu(), WINDOWS_MENU, [this](MenuCommand command) { commands.push_back(command); });
    window = QtMainWindows(windows.group)
                 .make({{460, 660}, "Dormel"}, SettingsView::create(windows.machine.updater, {}), [this] { ++closed; });
    window->bringToFront();
    windows.settle();
  }
  ~MainWindowTest() override { window.reset(); }

  [[nodiscard]] DesktopWindow& shown() { return *windows.group->mainWindow(); }

  OpenWindows windows;
  QtMainMenu menu{windows.group, {}};
  std::vector<MenuCommand> commands;
  int closed = 0;
  std::unique_ptr<MainWindow> window;
};

TEST_F(MainWindowTest, HasOneSizeAndComesBackToTheFront) {
  EXPECT_EQ(shown().size(), QSize(460, 660));
  EXPECT_EQ(shown().minimumSize(), shown().maximumSize());
  windows.key(Qt::Key_M, Qt::ControlModifier);
  windows.settle();
  EXPECT_TRUE(shown().windowStates() & Qt::WindowMinimized);
  window->bringToFront();
  windows.settle();
  EXPECT_FALSE(shown().windowStates() & Qt::WindowMinimized);
}

TEST_F(MainWindowTest, ClosingAsksAndLeavesItToTheAnswer) {
  shown().close();
  EXPECT_EQ(closed, 0);  // in a turn of its own
  windows.settle();
  EXPECT_EQ(closed, 1);
  EXPECT_TRUE(shown().isVisible());
  window->close();
  windows.settle();
  EXPECT_EQ(closed, 1);
  EXPECT_EQ(OpenWindows::openWindows(), 0);
}

TEST_F(MainWindowTest, ShortcutsAreExactlyTheMenus) {
  windows.key(Qt::Key_Q);
  windows.key(Qt::Key_Q, Qt::ControlModifier | Qt::ShiftModifier);
  windows.key(Qt::Key_H, Qt::ControlModifier | Qt::AltModifier);  // this desktop hides nobody else's windows
  windows.settle();
  EXPECT_TRUE(commands.empty());
  EXPECT_FALSE(shown().windowStates() & Qt::WindowMinimized);
  windows.key(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(commands, std::vector{MenuCommand::quit});
  windows.key(Qt::Key_W, Qt::ControlModifier);
  windows.settle();
  EXPECT_EQ(closed, 1);
}

TEST_F(MainWindowTest, AnAlertLeavesOnlyQuitting) {
  const auto alert = QtAlerts(windows.group).show({AlertStyle::warning, "Really?", "", {"Yes", "Cancel"}}, [](int) {});
  windows.settle();
  for (const Qt::Key key : {Qt::Key_W, Qt::Key_M, Qt::Key_H}) windows.key(key, Qt::ControlModifier);
  windows.settle();
  EXPECT_EQ(closed, 0);
  EXPECT_FALSE(shown().windowStates() & Qt::WindowMinimized);
  EXPECT_FALSE(menu.canPerform(MenuCommand::about));
  windows.key(Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(commands, std::vector{MenuCommand::quit});
}

TEST_F(MainWindowTest, TheAboutPanelIsOneWindowAndGoesByEscape) {
  menu.perform(MenuCommand::about);
  menu.perform(MenuCommand::about);
  windows.settle();
  EXPECT_EQ(OpenWindows::openWindows(), 2);
  EXPECT_NE(OpenWindows::itemWithText(QStringLiteral("About Dormel"), QStringLiteral("Version 1.0 (1)")), nullptr);
  windows.key(Qt::Key_Escape);
  windows.settle();
  EXPECT_EQ(OpenWindows::openWindows(), 1);
}

TEST_F(MainWindowTest, EditingCommandsGoToTheFocusedControl) {
  EXPECT_FALSE(menu.canPerform(MenuCommand::paste));  // nothing here can be edited
  QTemporaryFile source(QStringLiteral("XXXXXX.qml"));
  ASSERT_TRUE(source.open());
  source.write(R"(import QtQuick
    Item { required property var view; implicitWidth: 100; implicitHeight: 50
           TextInput { focus: true; text: "good night" } })");
  source.close();
  QmlSceneRegistry registry;
  registry.add(ViewKind::settings,
               {QUrl::fromLocalFile(source.fileName()), [](const auto&) { return std::make_unique<ViewBridge>(); }});
  DesktopWindow editor(std::make_shared<WindowGroup>(std::make_shared<SceneLoader>(std::move(registry)), WindowHelp{}),
                       SettingsView::create(windows.machine.updater, {}), Qt::Window);
  editor.fixSize();
  editor.bringToFront();
  windows.settle();
  QObject* control = QGuiApplication::focusObject();
  ASSERT_NE(control, nullptr);
  menu.perform(MenuCommand::selectAll);
  EXPECT_EQ(control->property("selectedText").toString(), QStringLiteral("good night"));
  menu.perform(MenuCommand::deleteSelection);
  EXPECT_EQ(control->property("text").toString(), QString());
  menu.perform(MenuCommand::undo);
  EXPECT_EQ(control->property("text").toString(), QStringLiteral("good night"));
}

}  // namespace
}  // namespace dormel
