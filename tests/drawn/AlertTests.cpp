#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <functional>
#include <optional>

#include "platform/linux/qt/QtAlerts.h"
#include "tests/drawn/OpenWindows.h"

namespace dormel {
namespace {

const Alert MOVE{AlertStyle::informational, "Move?", "To the folder.", {"Move", "Quit"}};
const Alert THREE{AlertStyle::warning, "Which?", "", {"Save", "Cancel", "Discard"}};
const Alert BOTH{AlertStyle::warning, "Which?", "", {"This", "That"}};
const Alert PLAIN{AlertStyle::critical, "It failed.", "", {"OK"}};

TEST(AlertTest, IsAnsweredByTheKeyboard) {
  struct Case {
    const char* keys;
    const Alert& alert;
    std::function<void(OpenWindows&)> press;
    std::optional<int> answer;
  };
  const auto tap = [](std::initializer_list<Qt::Key> keys) {
    return [keys = std::vector<Qt::Key>(keys)](OpenWindows& windows) {
      for (const Qt::Key key : keys) windows.key(key);
    };
  };
  for (const Case& one : {
           Case{"Return", MOVE, tap({Qt::Key_Return}), 0},
           Case{"Enter", PLAIN, tap({Qt::Key_Enter}), 0},
           Case{"Escape", MOVE, tap({Qt::Key_Escape}), 1},
           Case{"Escape past others", THREE, tap({Qt::Key_Escape}), 1},
           Case{"Escape at the only button", PLAIN, tap({Qt::Key_Escape}), 0},
           Case{"Escape without a cancelling button", BOTH, tap({Qt::Key_Escape}), std::nullopt},
           Case{"Tab, Space", MOVE, tap({Qt::Key_Tab, Qt::Key_Space}), 1},
           Case{"Tab twice, Return", THREE, tap({Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Return}), 2},
           Case{"Tab round", MOVE, tap({Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Return}), 0},
           Case{"Backtab", THREE, tap({Qt::Key_Backtab, Qt::Key_Return}), 2},
       }) {
    OpenWindows windows;
    QtAlerts alerts(windows.group);
    std::vector<int> answers;
    const auto shown = alerts.show(one.alert, [&](int button) { answers.push_back(button); });
    windows.settle();
    EXPECT_TRUE(OpenWindows::ringed().isEmpty()) << one.keys;
    one.press(windows);
    EXPECT_TRUE(answers.empty()) << one.keys << ": not inside the key's event";
    windows.settle();
    EXPECT_EQ(answers, one.answer ? std::vector<int>{*one.answer} : std::vector<int>{}) << one.keys;
    EXPECT_EQ(OpenWindows::openWindows(), one.answer ? 0 : 1) << one.keys;
  }
}

TEST(AlertTest, AssistiveToolsCanReadAndPressIt) {
  OpenWindows windows;
  QtAlerts alerts(windows.group);
  std::vector<int> answers;
  const auto shown = alerts.show(THREE, [&](int button) { answers.push_back(button); });
  windows.settle();
  QAccessibleInterface* button = QAccessible::queryAccessibleInterface(
      OpenWindows::itemWithText(QStringLiteral("Which?"), QStringLiteral("Discard")));
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(button->role(), QAccessible::Button);
  EXPECT_EQ(button->text(QAccessible::Name), QStringLiteral("Discard"));
  EXPECT_TRUE(button->state().focusable);
  ASSERT_NE(button->actionInterface(), nullptr);
  button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  windows.settle();
  EXPECT_EQ(answers, std::vector{2});
}

TEST(AlertTest, TheDesktopsCloseCancelsOrDoesNothing) {
  for (const auto& [alert, answer] :
       {std::pair{MOVE, std::vector<int>{1}}, {PLAIN, std::vector<int>{0}}, {BOTH, std::vector<int>{}}}) {
    OpenWindows windows;
    QtAlerts alerts(windows.group);
    std::vector<int> answers;
    const auto shown = alerts.show(alert, [&](int button) { answers.push_back(button); });
    windows.settle();
    QGuiApplication::focusWindow()->close();
    windows.settle();
    EXPECT_EQ(answers, answer);
    EXPECT_EQ(OpenWindows::openWindows(), answer.empty() ? 1 : 0);
  }
}

TEST(AlertTest, TakenOffItAnswersNobody) {
  OpenWindows windows;
  QtAlerts alerts(windows.group);
  int answers = 0;
  auto shown = alerts.show(MOVE, [&](int) { ++answers; });
  windows.settle();
  windows.key(Qt::Key_Return);
  shown.reset();  // answered, but nobody was told yet
  windows.settle();
  EXPECT_EQ(answers, 0);

  shown = alerts.show(MOVE, [&](int) { ++answers; });
  windows.settle();
  shown.reset();
  windows.settle();
  EXPECT_EQ(answers, 0);
  EXPECT_EQ(OpenWindows::openWindows(), 0);
  EXPECT_FALSE(windows.group->isAlertOpen());
}

}  // namespace
}  // namespace dormel
