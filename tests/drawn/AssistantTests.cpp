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
}

TEST_F(AssistantGuideTest, TheArrowBouncesWhileItIsSeen) {
  DrawnView drawn(desk.factory, view, 1);
  drawn.picture();
  const auto arrow = [] {
    for (const SeenItem& item : seenItems()) {
      if (item.kind.startsWith(QStringLiteral("dormel::Glyph")) && item.box.left() > 40) return item.box.top();
    }
    return 0.0;
  };
  desk.pass(0.02);
  const double low = arrow();
  desk.pass(0.68);
  EXPECT_NEAR(arrow() - low, -6, 0.1);
  desk.pass(0.7);
  EXPECT_NEAR(arrow() - low, 0, 0.1);
  drawn.canvas().setShowing(false);
  desk.pass(0.02);
  EXPECT_FALSE(desk.isAnimating());
}

}  // namespace
}  // namespace dormel
