// What needs no server.
#include <gtest/gtest.h>

#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/display/PanelCanvas.h"
#include "platform/linux/display/TimingCurves.h"
#include "platform/linux/x11/AlphaRegion.h"
#include "tests/x11/Fixture.h"

namespace dormel::x11::test {
namespace {

TEST(KeyTracker, AKeyOnTwoKeyboardsIsOneKeyAndADepartedKeyboardLetsGo) {
  constexpr std::uint8_t A = 38;
  constexpr std::uint8_t LEFT_SHIFT = 50;
  KeyTracker keys;
  EXPECT_TRUE(keys.press(7, A, 0));
  EXPECT_FALSE(keys.press(9, A, 0));
  EXPECT_FALSE(keys.release(7, A));
  EXPECT_FALSE(keys.release(7, A)) << "told twice";
  EXPECT_TRUE(keys.press(9, LEFT_SHIFT, 56));
  const auto released = keys.releaseAll(9);
  ASSERT_EQ(released.size(), 2U);
  EXPECT_EQ(released[0].type, EventType::keyUp);
  EXPECT_EQ(released[1].type, EventType::flagsChanged);
  EXPECT_EQ(released[1].flags, 0U);
  EXPECT_TRUE(keys.press(7, A, 0));
}

TEST(AlphaRegion, OutlinesWhatIsMoreOpaqueThanNot) {
  constexpr std::uint32_t X = 0x80123456;
  constexpr std::uint32_t o = 0x7fffffff;
  const std::uint32_t picture[] = {
      o, o, o, o, o, 9,  //
      o, X, X, o, X, 9,  //
      o, X, X, o, X, 9,  //
      X, X, X, X, X, 9,  //
      o, o, o, o, o, 9,  //
      o, o, X, o, o, 9,
  };
  std::string text;
  for (const auto& r : opaqueRegion({picture, 5, 6, 6})) {
    text += std::to_string(r.x) + "," + std::to_string(r.y) + " " + std::to_string(r.width) + "x" +
            std::to_string(r.height) + "; ";
  }
  EXPECT_EQ(text, "1,1 2x2; 4,1 1x2; 0,3 5x1; 2,5 1x1; ");
}

TEST(PanelCanvas, APressOnWhatTakesNoneDragsWhatCanBeMoved) {
  using enum PointerAction;
  PlainCanvases canvases;
  PanelCanvas content(loop(), canvases, pillStyle(),
                      {[&] {
                         content.fit({200, 100}, 1);
                       },
                       [](const Pixels&, const PixelRect&) {}});
  content.setView(std::make_shared<PlainView>());
  content.show();
  ASSERT_TRUE(until([&] { return content.size() == Size{200, 100}; }));
  EXPECT_FALSE(content.pointer(press, 10, 20));
  EXPECT_FALSE(content.pointer(move, 10.5, 19.5)) << "not far enough";
  const auto dragged = content.pointer(move, 13, 18);
  ASSERT_TRUE(dragged);
  EXPECT_EQ(dragged->right, 3);
  EXPECT_EQ(dragged->down, -2);
  EXPECT_FALSE(content.pointer(release, 13, 18) || content.pointer(move, 50, 50));
  canvases.made.at(0)->takesPointer = true;
  EXPECT_FALSE(content.pointer(press, 10, 20) || content.pointer(move, 60, 60)) << "its content's";
}

}  // namespace
}  // namespace dormel::x11::test
