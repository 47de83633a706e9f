// What needs no server.
#include <gtest/gtest.h>

#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/display/TimingCurves.h"
#include "platform/linux/x11/AlphaRegion.h"

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

}  // namespace
}  // namespace dormel::x11::test
