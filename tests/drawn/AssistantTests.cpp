#include <gtest/gtest.h>

#include "assistant/OverlayContentView.h"
#include "tests/drawn/DrawnMachine.h"
#include "tests/drawn/SeenItems.h"

namespace dormel {
namespace {

class AssistantGuideTest : public testing::Test {
 protected:
  void press(DrawnView& drawn, double x, double y) {
    drawn.canvas().pointer(PointerAction::press, x, y);
    drawn.canvas().pointer(PointerAction::release, x, y);
    drawn.picture();
  }

  DrawnMachine desk;
  int backs = 0;
  std::shared_ptr<OverlayContentView> view =
      std::make_shared<OverlayContentView>(AssentaHostApp{"Dormel", "file:///Applications/Dormel.app", ""},
                                           AssentaPanel::screenRecording, [this] { ++backs; });
};

TEST_F(AssistantGuideTest, SaysWhatToDoAndLeadsBack) {
  DrawnView drawn(desk.factory, view, 2);
  EXPECT_EQ(drawn.canvas().fittingSize(), (Size{530, 109}));
  const QImage& picture = drawn.picture();
  EXPECT_EQ(seenLines(), QStringList({"Drag Dormel to the list above to allow Screen Recording", "Dormel"}));
  EXPECT_EQ(picture.pixelColor(1, 1).alpha(), 0) << "outside the round corner";
  EXPECT_EQ(picture.pixelColor(16, 109).alpha(), 240) << "a little translucent";
  const QRectF name = boxOf("Dormel");
  EXPECT_NEAR(name.center().y(), 50 + 43 / 2.0, 1);
  press(drawn, 300, 30);
  EXPECT_EQ(backs, 0);
  press(drawn, 26, 26);
  EXPECT_EQ(backs, 1);
  desk.pass(0.02);
  EXPECT_TRUE(desk.isAnimating()) << "its arrow bounces";
  drawn.canvas().setShowing(false);
  desk.pass(0.5);
  EXPECT_FALSE(desk.isAnimating());
}

}  // namespace
}  // namespace dormel
