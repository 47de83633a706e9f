#include <gtest/gtest.h>

#include <QFile>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <tuple>

#include "assistant/AssentaAssistant.h"
#include "core/Config.h"
#include "platform/linux/qt/QtMainWindows.h"
#include "settings/AccessibilityCardView.h"
#include "settings/SettingsView.h"
#include "tests/drawn/DrawnMachine.h"
#include "tests/drawn/OpenWindows.h"
#include "tests/drawn/SeenItems.h"
#include "ui/qml/Logo.h"

namespace dormel {
namespace {

QColor at(const QImage& picture, const QPointF& point) {
  return picture.pixelColor((point * picture.devicePixelRatio()).toPoint());
}

void click(DrawnView& drawn, const QPointF& place) {
  for (const PointerAction action : {PointerAction::press, PointerAction::release}) {
    drawn.canvas().pointer(action, place.x(), place.y());
  }
}

class AccessibilityCardTest : public testing::Test {
 protected:
  int opened = 0;
  DrawnMachine desk;
  DrawnView drawn{desk.factory, AccessibilityCardView::create([this] { ++opened; }), 2};
};

TEST_F(AccessibilityCardTest, FlipsItsSwitchOnAndOff) {
  // Left and right of where the knob stands, in the row of "Dormel.app".
  const auto ends = [this] {
    const QImage& picture = drawn.picture();
    const double y = boxOf(QStringLiteral("Dormel.app")).center().y();
    const double right = drawn.canvas().fittingSize().width - 20 - 12;
    return std::pair{at(picture, {right - 30 + 4.5, y}), at(picture, {right - 4.5, y})};
  };
  drawn.picture();
  const QColor knob(Qt::white);
  desk.pass(1.3);
  EXPECT_EQ(ends().first, knob);
  EXPECT_LT(ends().second.saturation(), 60);
  desk.pass(0.3);
  EXPECT_NE(ends().first, knob);  // on its way
  EXPECT_NE(ends().second, knob);
  desk.pass(0.3);
  EXPECT_EQ(ends().second, knob);
  const QColor track = ends().first;
  EXPECT_NEAR(track.red(), 0.04 * 255, 3);
  EXPECT_NEAR(track.green(), 0.52 * 255, 3);
  EXPECT_EQ(track.blue(), 255);
  desk.pass(1.4);
  EXPECT_EQ(ends().first, knob);
}

TEST_F(AccessibilityCardTest, LeadsToTheSettingsAndStays) {
  drawn.picture();
  const QRectF capsule = boxOf(QStringLiteral("Open Accessibility Settings"));
  click(drawn, {capsule.center().x(), capsule.top() - 2});
  EXPECT_EQ(opened, 0);
  click(drawn, {capsule.left() + 20, capsule.bottom() - 2});
  EXPECT_EQ(opened, 1);
  desk.pass(0.2);
  EXPECT_EQ(at(drawn.picture(), {capsule.left() + 40, capsule.center().y()}), QColor(Qt::white));
  EXPECT_TRUE(seenLines().contains(QStringLiteral("Dormel will start when enabled.")));
}

TEST_F(AccessibilityCardTest, IsTranslucentWithRoundCorners) {
  EXPECT_EQ(drawn.canvas().fittingSize(), AccessibilityCardView::create([] {})->fittingSize());
  const QImage& picture = drawn.picture();
  EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
  EXPECT_EQ(picture.pixelColor(picture.width() - 1, picture.height() - 1).alpha(), 0);
  const int inside = picture.pixelColor(picture.width() / 2, 16).alpha();
  EXPECT_GT(inside, 200);
  EXPECT_LT(inside, 255);
  // The border catches light from above.
  EXPECT_GT(picture.pixelColor(picture.width() / 2, 1).lightness(),
            picture.pixelColor(picture.width() / 2, picture.height() - 2).lightness() + 20);
}

/// The settings in an open window.
class SettingsWindowTest : public testing::Test {
 protected:
  void open(bool withPreview = false) {
    const auto noted = [this](const char* what) { return [this, what] { done << QLatin1String(what); }; };
    std::function<void()> preview;
    if (withPreview) preview = noted("introduction");
    view = SettingsView::create(desk.machine.updater, {noted("test"), preview, noted("uninstall"), [] { return true; },
                                                       [] {}, [] {}, noted("nights")});
    window = QtMainWindows(desk.group).make({{460, 660}, "Dormel"}, view, [] {});
    window->bringToFront();
    rest();
  }
  void TearDown() override { window.reset(); }

  /// Until everything that moves has come to rest.
  void rest() {
    desk.settle();
    desk.pass(2.2);
    desk.settle();
  }
  void keys(std::initializer_list<Qt::Key> pressed) {
    for (const Qt::Key key : pressed) desk.key(key);
    rest();
  }
  [[nodiscard]] QQuickItem* control(const char* text) const {
    return OpenWindows::itemWithText(QStringLiteral("Dormel"), QString::fromUtf8(text));
  }
  [[nodiscard]] static QString ringed() { return OpenWindows::ringed().join(QLatin1Char(',')); }
  [[nodiscard]] bool isListOpen() const { return control("Lock at")->property("open").toBool(); }
  [[nodiscard]] QQuickItem* grabberOfPressAt(const QPointF& place) const {
    DesktopWindow& shown = *desk.group->mainWindow();
    QQuickItem* grabber = nullptr;
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
      const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
      QMouseEvent event(type, place, shown.mapToGlobal(place), Qt::LeftButton, held, Qt::NoModifier);
      QCoreApplication::sendEvent(&shown, &event);
      if (held != Qt::NoButton) grabber = shown.mouseGrabberItem();
    }
    return grabber;
  }
  void click(const char* text) {
    const QQuickItem* item = control(text);
    ASSERT_NE(item, nullptr) << text;
    std::ignore = grabberOfPressAt(item->mapToScene({item->width() / 2, item->height() / 2}));
    rest();
  }

  QStringList done;
  OpenWindows desk;
  std::shared_ptr<SettingsView> view;
  std::unique_ptr<MainWindow> window;
};

TEST_F(SettingsWindowTest, TabPassesEveryControlOnceAndBringsItIntoView) {
  desk.machine.accessibility.setTrusted(false);
  open(true);
  QStringList seen;
  for (int i = 0; i < 10; ++i) {
    keys({Qt::Key_Tab});
    seen << ringed();
    const QQuickItem* at = control(qPrintable(ringed()));
    ASSERT_NE(at, nullptr);
    const QRectF box = at->mapRectToScene({0, 0, at->width(), at->height()});
    EXPECT_TRUE(QRectF(0, 44, 460, 616).contains(box)) << qPrintable(ringed()) << box.top();
  }
  EXPECT_EQ(seen, QStringList({QStringLiteral("Dormel"), QStringLiteral("Lock at"), QStringLiteral("24-hour"),
                               QStringLiteral("Open Settings"), QStringLiteral("Install updates automatically"),
                               QStringLiteral("Check for Updates…"), QStringLiteral("Rehearse the lock"),
                               QStringLiteral("Replay the introduction"), QStringLiteral("Your nights"),
                               QStringLiteral("Uninstall Dormel")}));
  keys({Qt::Key_Return, Qt::Key_Backtab, Qt::Key_Space, Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Backtab,
        Qt::Key_Space});
  EXPECT_EQ(done, QStringList({QStringLiteral("uninstall"), QStringLiteral("nights"), QStringLiteral("introduction"),
                               QStringLiteral("test")}));
  desk.machine.journal.clear();
  keys({Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Backtab, Qt::Key_Space, Qt::Key_Backtab, Qt::Key_Return});
  EXPECT_FALSE(view->autoUpdates());
  EXPECT_EQ(AssentaAssistant::shared().activePanel(), AssentaPanel::accessibility);
  keys({Qt::Key_Backtab, Qt::Key_Right});
  EXPECT_FALSE(view->use24Hour());
  EXPECT_EQ(ringed(), QStringLiteral("12-hour"));
  keys({Qt::Key_Backtab, Qt::Key_Backtab, Qt::Key_Space});
  EXPECT_FALSE(view->isEnabled());
}

TEST_F(SettingsWindowTest, TheHourIsChosenByKeyboardOrMouse) {
  open();
  const struct {
    const char* name;
    std::initializer_list<Qt::Key> pressed;
    int hour;
    bool open;
  } rows[] = {
      {"opened", {Qt::Key_Space}, 22, true},
      {"moved, not chosen", {Qt::Key_Up, Qt::Key_Up, Qt::Key_Escape}, 22, false},
      {"chosen", {Qt::Key_Return, Qt::Key_Up, Qt::Key_Return}, 21, false},
      {"typed, the second ten", {Qt::Key_Down, Qt::Key_1, Qt::Key_1, Qt::Key_Space}, 23, false},
      {"to the ends", {Qt::Key_Up, Qt::Key_End, Qt::Key_Down, Qt::Key_Return}, 2, false},
      {"left by Tab", {Qt::Key_Space, Qt::Key_Home, Qt::Key_Tab}, 2, false},
  };
  keys({Qt::Key_Tab, Qt::Key_Tab});
  for (const auto& row : rows) {
    keys(row.pressed);
    EXPECT_EQ(view->startHour(), row.hour) << row.name;
    EXPECT_EQ(isListOpen(), row.open) << row.name;
    EXPECT_EQ(ringed(), QLatin1String(row.open ? "10:00 PM" : "Lock at")) << row.name;
  }
  click("Lock at");
  click("8:00 PM");
  EXPECT_EQ(view->startHour(), 20);
  click("Lock at");
  click("Dormel");  // beside the list
  EXPECT_TRUE(view->isEnabled());
  EXPECT_FALSE(isListOpen());
  click("12-hour");
  EXPECT_FALSE(view->use24Hour());
  EXPECT_EQ(ringed(), QString()) << "the mouse leaves no ring";
}

TEST_F(SettingsWindowTest, LockedInItRefusesAndLeavesNoWayOut) {
  open();
  keys({Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space, Qt::Key_Up});
  EXPECT_TRUE(isListOpen());
  desk.machine.setWallClock("2026-11-16 22:00:00");
  rest();
  EXPECT_FALSE(isListOpen());
  EXPECT_FALSE(control("Lock at")->isEnabled());
  EXPECT_FALSE(control("Uninstall Dormel")->isVisible());
  for (const char* note :
       {"Can't turn Dormel off during blocking hours.", "Can't change the schedule during blocking hours."}) {
    EXPECT_TRUE(control(note)->isVisible()) << note;
  }
  click("Lock at");
  EXPECT_FALSE(isListOpen());
  const QQuickItem* lock = control("Dormel");
  EXPECT_EQ(lock->property("shown").toDouble(), 1);
  std::ignore = grabberOfPressAt(lock->mapToScene({lock->width() / 2, lock->height() / 2}));
  desk.pass(0.1);
  EXPECT_LT(lock->property("shown").toDouble(), 0.8) << "it gives";
  rest();
  EXPECT_EQ(lock->property("shown").toDouble(), 1) << "and springs back";
  EXPECT_TRUE(view->isEnabled());
}

TEST_F(SettingsWindowTest, ShowsWhereThingsStand) {
  open();
  const auto shows = [this](const char* text) {
    const QQuickItem* item = control(text);
    return item != nullptr && item->isVisible();
  };
  EXPECT_TRUE(shows("Locks 10:00 PM, unlocks 6:00 AM."));
  EXPECT_FALSE(shows("Open Settings"));
  EXPECT_TRUE(shows("Dormel updates itself overnight. Nothing to click."));
  desk.machine.accessibility.setTrusted(false);
  desk.machine.updater.setStatus("Dormel is up to date.");
  desk.machine.updater.setCanCheck(false);
  view->setEnabled(false);
  view->setAutoUpdates(false);
  rest();
  for (const char* text :
       {"Disabled", "Dormel won't lock your screen.", "Required. Dormel can't lock the screen.", "Open Settings",
        "Updates arrive only when you check by hand.", "Dormel is up to date.", "Dormel 1.0 (build 1)", "by Orvane"}) {
    EXPECT_TRUE(shows(text)) << text;
  }
  EXPECT_FALSE(control("Check for Updates…")->isEnabled());
  EXPECT_FALSE(shows("Replay the introduction"));
  EXPECT_FALSE(desk.isAnimating()) << "it rests";
}

TEST_F(SettingsWindowTest, SaysWhatToDoWhereNoPageOfTheDesktopHelps) {
  desk.speakAsLinux();
  desk.machine.accessibility.setTrusted(false);
  open();
  const QQuickItem* button = control("Open Settings");
  EXPECT_TRUE(button == nullptr || !button->isVisible()) << "a button that does nothing";
  const QQuickItem* advice = control(view->permissionText().c_str());
  EXPECT_TRUE(advice != nullptr && advice->isVisible()) << view->permissionText();
}

TEST_F(SettingsWindowTest, OffersNoUpdatesWithoutAFeedAndSaysWhatWasNotSaved) {
  desk.machine.updater.setHasFeed(false);
  open();
  for (const char* name : {"Install updates automatically", "Check for Updates…"}) {
    const QQuickItem* offered = control(name);
    EXPECT_TRUE(offered == nullptr || !offered->isVisible()) << name;
  }
  const auto warned = [&] {
    rest();
    const QQuickItem* note = control("Your settings can't be saved. Nothing was changed.");
    return note != nullptr && note->isVisible();
  };
  EXPECT_FALSE(warned());
  desk.machine.defaults.setWritable(false);
  view->setEnabled(false);
  EXPECT_TRUE(warned());
  EXPECT_TRUE(control("Enabled")->isVisible());
}

TEST_F(SettingsWindowTest, ScrollsByWheelAndIsDraggedByItsBackground) {
  open();
  EXPECT_EQ(grabberOfPressAt({10, 400}), nullptr);
  EXPECT_NE(grabberOfPressAt(control("Lock at")->mapToScene({5, 5})), nullptr);
  keys({Qt::Key_Escape});
  DesktopWindow& shown = *desk.group->mainWindow();
  const double before = control("by Orvane")->mapToScene({}).y();
  EXPECT_GT(before, 660);
  for (int i = 0; i < 12; ++i) {
    QWheelEvent wheel({200, 300}, shown.mapToGlobal(QPointF(200, 300)), {0, -120}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&shown, &wheel);
    rest();
  }
  EXPECT_LT(control("by Orvane")->mapToScene({}).y(), 620);
  // Scrolled into the strip by which the window is dragged, a control cannot be pressed unseen.
  QQuickItem* page = control("Lock at");
  while (!page->inherits("QQuickFlickable")) page = page->parentItem();
  page->setProperty("contentY", page->property("contentY").toDouble() + control("Lock at")->mapToScene({}).y());
  EXPECT_EQ(grabberOfPressAt(control("Lock at")->mapToScene({20, 20})), nullptr);
}

TEST(LogoTest, TheIconsFileShowsTheMark) {
  QFile file(QStringLiteral(DORMEL_SOURCE "/packaging/dormel.svg"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().contains(Logo::svgPath().toUtf8()));
}

}  // namespace
}  // namespace dormel
