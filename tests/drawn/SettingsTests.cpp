#include <gtest/gtest.h>

#include <QFile>

#include "core/Config.h"
#include "settings/AccessibilityCardView.h"
#include "settings/StatusPage.h"
#include "tests/drawn/DrawnMachine.h"
#include "tests/drawn/SeenItems.h"
#include "ui/qml/Mark.h"

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

TEST_F(AccessibilityCardTest, KeepsItsTitleOnOneLine) {
  drawn.canvas().resize({300, 260}, 2);
  drawn.picture();
  const QRectF title = boxOf(QStringLiteral("Dormel Requires Accessibility"));
  EXPECT_LT(title.height(), 24);
  EXPECT_LE(title.right(), 280.5);
}

class StatusPageTest : public testing::Test {
 protected:
  QStringList lines() {
    desk.pass(2.2);  // it looks every two seconds
    drawn.picture();
    return seenLines();
  }

  int testRuns = 0, demos = 0, uninstalls = 0, settings = 0;
  DrawnMachine desk;
  DrawnView drawn{desk.factory,
                  StatusPage::create(
                      {[this] { ++testRuns; }, [this] { ++demos; }, [this] { ++uninstalls; }, [this] { ++settings; }}),
                  1};
};

TEST_F(StatusPageTest, SaysHowThingsStand) {
  EXPECT_TRUE(lines().contains(QStringLiteral("Locks 10:00 PM, unlocks 7:00 AM.")));
  EXPECT_TRUE(lines().contains(QStringLiteral("Enabled")));
  EXPECT_TRUE(lines().contains(QStringLiteral("Granted. Dormel can lock the screen.")));

  desk.machine.accessibility.setTrusted(false);
  EXPECT_FALSE(lines().contains(QStringLiteral("Granted. Dormel can lock the screen.")));
  click(drawn, boxOf(QStringLiteral("Open Settings")).center());
  EXPECT_EQ(settings, 1);

  desk.store(defaultsKey::blockingEnabled, {false});
  EXPECT_TRUE(lines().contains(QStringLiteral("Disabled")));
  desk.store(defaultsKey::onboardingComplete, {false});
  EXPECT_TRUE(lines().contains(QStringLiteral("Not set up")));
}

TEST_F(StatusPageTest, OffersWhatCanBeDone) {
  lines();
  click(drawn, boxOf(QStringLiteral("Test run")).center());
  click(drawn, boxOf(QStringLiteral("Demo")).center());
  click(drawn, boxOf(QStringLiteral("Uninstall Dormel")).center());
  EXPECT_EQ(std::vector({testRuns, demos, uninstalls}), std::vector({1, 1, 1}));

  desk.machine.accessibility.setTrusted(false);
  EXPECT_TRUE(lines().contains(QStringLiteral("The demo needs Accessibility.")));
  click(drawn, boxOf(QStringLiteral("Demo")).center());
  click(drawn, boxOf(QStringLiteral("Test run")).center());
  EXPECT_EQ(std::vector({testRuns, demos}), std::vector({2, 1}));

  desk.machine.setWallClock("2026-11-16 23:00:00");
  EXPECT_FALSE(lines().contains(QStringLiteral("Uninstall Dormel")));
  // Everything keeps its place in the window.
  for (const SeenItem& item : seenItems()) {
    if (item.text.isEmpty()) continue;
    EXPECT_TRUE(QRectF(0, 0, 460, 660).contains(item.box)) << qPrintable(item.text);
  }
}

TEST_F(StatusPageTest, RestsOnceItsMarkIsDrawn) {
  drawn.picture();
  desk.pass(0.1);
  EXPECT_TRUE(desk.isAnimating());
  desk.pass(2);
  EXPECT_FALSE(desk.isAnimating());
}

TEST(MarkTest, TheIconsFileShowsTheMark) {
  QFile file(QStringLiteral(DORMEL_SOURCE "/packaging/dormel.svg"));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_TRUE(file.readAll().contains(Mark::svgPath().toUtf8()));
}

}  // namespace
}  // namespace dormel
