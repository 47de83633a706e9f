#include <gtest/gtest.h>

#include <cmath>

#include "overlay/BlockerOverlayView.h"
#include "tests/drawn/DrawnNight.h"
#include "tests/drawn/SeenItems.h"

namespace dormel {
namespace {

/// Past the fade-in.
constexpr Seconds APPEARED = 4.0;

QColor at(const QImage& picture, const QPointF& point) {
  return picture.pixelColor((point * picture.devicePixelRatio()).toPoint());
}

bool isBlack(const QImage& picture) {
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (picture.pixel(x, y) != qRgb(0, 0, 0)) return false;
    }
  }
  return true;
}

class BlockerOverlayTest : public testing::Test {
 protected:
  void appear() { night.pass(APPEARED); }

  [[nodiscard]] QString label(std::size_t key) const {
    return QString::fromStdString(night.session->bypassController()->requiredKeys()[key].label);
  }

  /// The cap's colour, beside its label.
  QColor cap(std::size_t key) {
    const QRectF box = boxOf(label(key));
    return at(drawn.picture(), {box.center().x(), box.bottom() + 14});
  }

  /// The ring's colour an eighth of the way round.
  QColor arc() {
    const QImage& picture = drawn.picture();
    const QRectF ring = boxOfRing();
    const double reach = (ring.width() / 2 - 2) / std::sqrt(2.0);
    return at(picture, ring.center() + QPointF(reach, -reach));
  }

  DrawnNight night;
  DrawnView drawn{night.factory, night.view(), 1};
};

TEST_F(BlockerOverlayTest, RisesOutOfBlack) {
  night.pass(1.2);
  EXPECT_TRUE(isBlack(drawn.picture()));

  night.pass(1.0);
  drawn.picture();
  const QRectF halfway = boxOf(QStringLiteral("DORMEL"));
  night.pass(2.0);
  const QImage whole = drawn.picture();
  const QRectF risen = boxOf(QStringLiteral("DORMEL"));
  EXPECT_GT(halfway.top(), risen.top() + 1);
  EXPECT_LT(halfway.top(), risen.top() + 19);
  EXPECT_EQ(seenLines().mid(0, 2), QStringList({"DORMEL", "23:05"}));
  EXPECT_EQ(seenLines().mid(seenLines().size() - 2),
            QStringList({"Good night. Time to sleep.", "Space to reshuffle keys"}));
  EXPECT_EQ(at(whole, {1, 1}), QColor(Qt::black));
}

TEST_F(BlockerOverlayTest, ShowsTheKeysAndLightsTheHeldOnes) {
  appear();
  drawn.picture();
  for (std::size_t key = 0; key < BYPASS_KEY_COUNT; ++key) EXPECT_FALSE(boxOf(label(key)).isEmpty()) << key;
  EXPECT_FALSE(boxOf(QStringLiteral("Alt")).isEmpty());  // below L.Option

  night.holdKeys(3);
  night.pass(0.06);
  const int lighting = cap(0).lightness();
  EXPECT_GT(lighting, 40);
  EXPECT_LT(lighting, 250);
  night.pass(0.2);
  for (std::size_t key = 0; key < BYPASS_KEY_COUNT; ++key) {
    if (key < 3) {
      EXPECT_EQ(cap(key), QColor(Qt::white)) << key;
    } else {
      EXPECT_LT(cap(key).lightness(), 30) << key;
    }
  }
  night.machine.keyboard.releaseAll();
  night.pass(0.2);
  EXPECT_LT(cap(0).lightness(), 30);
}

TEST_F(BlockerOverlayTest, CountsTheHoldDown) {
  appear();
  night.holdKeys();
  struct Moment {
    Seconds until;
    const char* left;
    int red, green;
  };
  Seconds held = 0;
  for (const Moment& moment : {Moment{6.5, "24", 90, 90},
                               {11.7, "19", 90, 90},
                               {12.5, "18", 138, 138},
                               {23.7, "7", 138, 138},
                               {24.6, "6", 208, 60},
                               {29.5, "1", 208, 60}}) {
    night.skip(moment.until - held - 0.5);
    night.pass(0.5);
    held = moment.until;
    EXPECT_NEAR(arc().red(), moment.red, 4) << moment.until;
    EXPECT_NEAR(arc().green(), moment.green, 4) << moment.until;
    EXPECT_TRUE(seenLines().contains(QString::fromLatin1(moment.left))) << moment.until;
    EXPECT_TRUE(seenLines().contains(QStringLiteral("Keep holding..."))) << moment.until;
    EXPECT_FALSE(seenLines().contains(QStringLiteral("23:05"))) << moment.until;
  }
  night.machine.keyboard.releaseAll();
  night.pass(0.5);
  EXPECT_NEAR(arc().red(), 20, 2);
  EXPECT_FALSE(night.isAnimating());
  EXPECT_TRUE(seenLines().contains(QStringLiteral("23:05")));
}

TEST_F(BlockerOverlayTest, APictureGrownInStepsIsAsOneDrawnWhole) {
  appear();
  night.holdKeys();
  night.pass(5.3);
  drawn.picture();
  // The arc is not painted with every frame: what is compared is the moment at which it was.
  for (const int before = drawn.frames(); drawn.frames() == before; drawn.picture()) night.pass(0.02);
  const QImage grown = drawn.picture();
  DrawnView fresh(night.factory, night.view(), 1);
  const QImage& whole = fresh.picture();
  ASSERT_EQ(grown.size(), whole.size());
  int worst = 0;
  for (int y = 0; y < whole.height(); ++y) {
    for (int x = 0; x < whole.width(); ++x) {
      worst = std::max(worst, std::abs(qRed(whole.pixel(x, y)) - qRed(grown.pixel(x, y))));
    }
  }
  EXPECT_LE(worst, 4);  // where parts meet, each has rounded its soft edge
}

TEST_F(BlockerOverlayTest, ConfirmsTheUnlockInTheChallengesPlace) {
  appear();
  night.holdKeys();
  night.skip(29.9);
  night.pass(0.3);
  drawn.picture();
  EXPECT_TRUE(seenLines().contains(QStringLiteral("Unlocked. Let go.")));
  EXPECT_FALSE(seenLines().contains(QStringLiteral("Good night. Time to sleep."))) << "the line between does not flash";
  night.pass(1.1);
  drawn.picture();
  EXPECT_EQ(seenLines(), QStringList({"DORMEL", "Unlocked. Let go.", "Relocking in 4:59"}));
  night.pass(1.4);
  EXPECT_TRUE(isBlack(drawn.picture()));  // faded out, and the windows are only about to
}

TEST_F(BlockerOverlayTest, DrawsNothingWhileNothingChanges) {
  appear();
  drawn.picture();
  const int drawnSoFar = drawn.frames();
  for (int second = 0; second < 50; ++second) {
    night.pass(1);
    ASSERT_FALSE(night.isAnimating()) << second;
    ASSERT_FALSE(drawn.canvas().isFramePending()) << second;
  }
  night.pass(10);  // the minute changes
  drawn.picture();
  EXPECT_EQ(drawn.frames(), drawnSoFar + 1);
  EXPECT_EQ(seenLines().at(1), QStringLiteral("23:06"));
  EXPECT_LT(drawn.lastChange().width, 200);
  EXPECT_LT(drawn.lastChange().height, 80);
}

TEST_F(BlockerOverlayTest, FitsEveryScaleAndSmallScreens) {
  appear();
  drawn.picture();
  const Size fitting = drawn.canvas().fittingSize();
  EXPECT_EQ(fitting, std::static_pointer_cast<PaintedView>(night.view())->fittingSize())
      << "as those say who cannot ask";
  for (const double scale : {1.25, 1.5, 2.0}) {
    drawn.canvas().resize(fitting, scale);
    const QImage& picture = drawn.picture();
    EXPECT_EQ(picture.width(), std::ceil(fitting.width * scale));
    EXPECT_EQ(drawn.lastChange(), (PixelRect{0, 0, picture.width(), picture.height()}));
  }
  drawn.canvas().resize({400, 300}, 1);
  drawn.picture();
  for (const SeenItem& item : seenItems()) {
    if (item.text.isEmpty()) continue;
    EXPECT_TRUE(QRectF(0, 0, 400, 300).contains(item.box)) << qPrintable(item.text);
  }
}

TEST(BlockerOverlayClockTest, HangsTheMarkerBelowTheTwelveHourClock) {
  DrawnNight night({.use24HourClock = false});
  DrawnView drawn(night.factory, night.view(), 1);
  night.pass(APPEARED);
  drawn.picture();
  EXPECT_EQ(seenLines().mid(0, 3), QStringList({"DORMEL", "11:05", "PM"}));
}

}  // namespace
}  // namespace dormel
