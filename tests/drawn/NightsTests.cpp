// The page "Your nights" in an open window.
#include <gtest/gtest.h>

#include <QAccessible>

#include "core/AppSupport.h"
#include "core/Config.h"
#include "platform/linux/qt/QtMainWindows.h"
#include "settings/NightsView.h"
#include "tests/drawn/OpenWindows.h"
#include "tests/drawn/SeenItems.h"

namespace dormel {
namespace {

/// It is Monday, 16 November 2026, at noon. The night before was opened, and the one before that kept.
class NightsWindowTest : public testing::Test {
 protected:
  NightsWindowTest() {
    desk.store(defaultsKey::use24HourClock, {true});
    desk.machine.files.put(AppSupport::url("nights.json"),
                           R"([{"night":"2026-11-14","firedAt":"2026-11-14T21:00:00.000Z","idleSeconds":70},)"
                           R"({"night":"2026-11-15","firedAt":"2026-11-15T21:00:00.000Z","idleSeconds":70}])");
    desk.machine.files.put(Config::unlockLogPath(), "2026-11-15 23:41:07 — unlocked (#1, held 30s)\n");
    view = NightsView::create();
    window = QtMainWindows(desk.group).make({NightsView::SIZE, "Your nights", false}, view, [this] { ++closed; });
    window->bringToFront();
    rest();
  }
  ~NightsWindowTest() override { window.reset(); }

  void rest() {
    desk.settle();
    desk.pass(0.5);
    desk.settle();
  }
  void keys(std::initializer_list<Qt::Key> pressed) {
    for (const Qt::Key key : pressed) desk.key(key);
    rest();
  }
  [[nodiscard]] static QQuickItem* item(const QString& text) {
    return OpenWindows::itemWithText(QStringLiteral("Your nights"), text);
  }
  /// Whether that text is seen somewhere.
  [[nodiscard]] static bool shows(const char* text) { return seenTexts().contains(QString::fromUtf8(text)); }
  [[nodiscard]] static QStringList seenTexts() {
    QStringList found;
    for (const SeenItem& seen : seenItems()) {
      if (seen.kind == QStringLiteral("QQuickText")) found << seen.text;
    }
    return found;
  }

  OpenWindows desk;
  std::shared_ptr<NightsView> view;
  std::unique_ptr<MainWindow> window;
  int closed = 0;
};

TEST_F(NightsWindowTest, TheKeyboardGoesFromNightToNight) {
  EXPECT_EQ(desk.group->mainWindow(), nullptr) << "alerts belong to the main window";
  EXPECT_EQ(OpenWindows::ringed(), QStringList());
  EXPECT_TRUE(shows("Sunday, 15 November: locked at 22:00, opened once at 23:41"));
  const struct {
    std::initializer_list<Qt::Key> pressed;
    const char* night;
  } rows[] = {
      {{Qt::Key_Up}, "Saturday, 14 November: locked at 22:00, not opened"},
      {{Qt::Key_Left}, "Saturday, 7 November: no lock recorded"},
      {{Qt::Key_Home}, "Tuesday, 18 August: no lock recorded"},
      {{Qt::Key_Left, Qt::Key_Up}, "Tuesday, 18 August: no lock recorded"},
      {{Qt::Key_Right, Qt::Key_Down}, "Wednesday, 26 August: no lock recorded"},
      {{Qt::Key_End, Qt::Key_Right, Qt::Key_Tab}, "Sunday, 15 November: locked at 22:00, opened once at 23:41"},
  };
  for (const auto& row : rows) {
    keys(row.pressed);
    EXPECT_EQ(OpenWindows::ringed(), QStringList(QString::fromUtf8(row.night)));
    EXPECT_TRUE(shows(row.night)) << row.night;
  }
  keys({Qt::Key_Escape});
  EXPECT_EQ(closed, 1);
}

TEST_F(NightsWindowTest, ItIsATableWithANameForEachNight) {
  QQuickItem* cell = item(QStringLiteral("Saturday, 14 November: locked at 22:00, not opened"));
  ASSERT_NE(cell, nullptr);
  QAccessibleInterface* told = QAccessible::queryAccessibleInterface(cell);
  EXPECT_EQ(told->role(), QAccessible::Cell);
  EXPECT_EQ(told->text(QAccessible::Name), QStringLiteral("Saturday, 14 November: locked at 22:00, not opened"));
  EXPECT_TRUE(told->state().focusable);
  ASSERT_NE(told->parent(), nullptr);
  EXPECT_EQ(told->parent()->role(), QAccessible::Table);
  int cells = 0;
  for (int i = 0; i < told->parent()->childCount(); ++i) {
    cells += told->parent()->child(i)->role() == QAccessible::Cell ? 1 : 0;
  }
  EXPECT_EQ(cells, 90);
}

TEST_F(NightsWindowTest, ShowsWhatTheLogsSayNow) {
  for (const char* text : {"0", "1", "1 min", "kept of the\nlast 30 nights"}) EXPECT_TRUE(shows(text)) << text;
  desk.machine.files.put(Config::unlockLogPath(), "");
  desk.machine.files.put(AppSupport::url("nights.json"), "[{");
  view->refresh();
  rest();
  EXPECT_TRUE(shows("Some records cannot be read. What they told is missing here."));
  EXPECT_TRUE(shows("Sunday, 15 November: no lock recorded"));
  desk.machine.files.put(AppSupport::url("nights.json"), "[]");
  view->refresh();
  rest();
  EXPECT_TRUE(shows("No night has been recorded yet."));
  EXPECT_FALSE(desk.isAnimating()) << "it rests";
}

}  // namespace
}  // namespace dormel
