#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/PaintedView.h"
#include "tests/drawn/DrawnNight.h"
#include "tests/drawn/SeenItems.h"

namespace dormel {
namespace {

/// A night in which the keys were held long enough; the pill is on screen.
class GracePillTest : public testing::Test {
 protected:
  GracePillTest() {
    night.skip(4);
    night.holdKeys();
    night.machine.timeline.advanceUntil([this] { return night.session->state() == SessionState::grace; }, 31);
    night.machine.keyboard.releaseAll();
    night.skip(4);
  }

  DrawnNight night;
};

TEST_F(GracePillTest, FitsItsContentAndStaysInItsWindow) {
  DrawnView drawn(night.factory, night.view(), 1);
  const Size fitting = drawn.canvas().fittingSize();
  EXPECT_EQ(fitting.height, 56);  // the ring between its paddings
  const Size told = std::static_pointer_cast<PaintedView>(night.view())->fittingSize();
  EXPECT_EQ(told.height, fitting.height);
  EXPECT_GT(told.width, fitting.width) << "with room for wider figures";
  EXPECT_LE(told.width, 212) << "or the window would grow";
  const QImage& picture = drawn.picture();
  EXPECT_LT(picture.pixelColor(0, 0).alpha(), 10) << "nothing there but the shadow";
  EXPECT_EQ(picture.pixelColor(picture.width() / 2, 5).alpha(), std::lround(0.75 * 255));
  EXPECT_EQ(seenLines(), QStringList({"4:56 remaining"}));
  for (const SeenItem& item : seenItems()) {
    if (item.text.isEmpty()) continue;
    EXPECT_GE(item.box.left(), 20 + 28 + 12);
    EXPECT_LE(item.box.right(), fitting.width - 19.5);
  }
}

TEST_F(GracePillTest, HasAShadowThatNoWindowIsCutAround) {
  for (const double scale : {1.0, 2.0}) {
    constexpr int MARGIN = 24;
    DrawnView drawn(night.factory, night.view(), scale, Size{212 + 2 * MARGIN, 56 + 2 * MARGIN});
    const QImage& picture = drawn.picture();
    const auto alpha = [&](double x, double y) {
      return picture.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale)).alpha();
    };
    EXPECT_EQ(alpha(130, MARGIN + 5), std::lround(0.75 * 255)) << "as if there were none";
    EXPECT_GT(alpha(130, MARGIN + 58), 60);
    EXPECT_GT(alpha(130, MARGIN - 3), 10);
    for (int x = 0; x < 260; ++x) {
      EXPECT_LE(alpha(x, 0.5) + alpha(x, 103.5), 4) << "nothing is cut off at the edge";
      for (int y = 0; y < MARGIN - 1; ++y) EXPECT_LT(std::max(alpha(x, y), alpha(x, 103 - y)), 128);
    }
  }
}

TEST_F(GracePillTest, TurnsUrgent) {
  DrawnView drawn(night.factory, night.view(), 2, Size{220, 64});
  struct Moment {
    int left;
    const char* text;
    std::array<int, 3> color;  // of as much as is opaque
  };
  for (const Moment& moment : {Moment{61, "1:01 remaining", {188, 188, 188}},
                               {60, "1:00 remaining", {255, 159, 10}},
                               {31, "31s remaining", {255, 159, 10}},
                               {30, "30s remaining", {255, 69, 58}},
                               {5, "5s remaining", {255, 69, 58}}}) {
    night.skip(night.session->graceSecondsRemaining() - moment.left - 0.9);
    night.pass(0.9);
    const QImage& picture = drawn.picture();
    EXPECT_EQ(seenLines(), QStringList({QString::fromLatin1(moment.text)}));
    // Where the arc starts.
    const QPointF top(boxOfRing().center().x(), boxOfRing().top() + 1.25);
    const QColor color = picture.pixelColor((top * 2).toPoint());
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR((std::array{color.red(), color.green(), color.blue()}[i]), moment.color[i], 12) << moment.left;
    }
  }
}

}  // namespace
}  // namespace dormel
