#include <gtest/gtest.h>

#include "platform/linux/x11/DisplayScale.h"
#include "tests/x11/Fixture.h"

namespace dormel::x11::test {
namespace {

TEST(Screens, AreInPointsFromTheBottomLeftWithTheMainOneFirst) {
  const auto server = XServer::withTwoMonitors();
  ASSERT_TRUE(server->run({"xrandr", "--output", "DUMMY1", "--primary"}));
  // A bar of 30 pixels on top of everything, as a window manager announces it.
  ASSERT_TRUE(
      server->run({"xprop", "-root", "-format", "_NET_WORKAREA", "32c", "-set", "_NET_WORKAREA", "0, 30, 1440, 570"}));
  Fixture desk(*server);
  const auto screens = desk.x11.screens().all();
  ASSERT_EQ(screens.size(), 2U);
  EXPECT_EQ(screens[0].name, "DUMMY1");
  EXPECT_EQ(screens[0].frame, (Rect{0, 0, 640, 480}));
  EXPECT_EQ(screens[0].visibleFrame, (Rect{0, 0, 640, 450}));
  EXPECT_EQ(screens[1].name, "DUMMY0");
  EXPECT_EQ(screens[1].frame, (Rect{-800, -120, 800, 600}));
  EXPECT_EQ(desk.x11.screens().main()->name, "DUMMY1");
}

TEST(Screens, AChangeIsToldAtOnceAndAMomentWithoutAnyIsNot) {
  const auto server = XServer::withTwoMonitors();
  Fixture desk(*server);
  int notices = 0;
  std::vector<Screen> seen;
  desk.x11.setOnScreensChanged([&] {
    ++notices;
    seen = desk.x11.screens().all();
  });
  server->plug("DUMMY1", 320, 200, 800, 0);  // the server has sent its events when this returns
  EXPECT_TRUE(until([&] { return seen.size() == 2 && seen[1].frame == Rect{800, 400, 320, 200}; }, 200));
  spin(100);
  const int before = notices;
  ASSERT_TRUE(server->run({"xrandr", "--output", "DUMMY0", "--off", "--output", "DUMMY1", "--off"}));
  spin(100);
  EXPECT_EQ(desk.x11.screens().all().size(), 2U) << "with every cable pulled, what was there still counts";
  EXPECT_EQ(notices, before);
}

TEST(DisplayScale, TheUsersFigureDecidesThenTheMonitors) {
  struct Case {
    const char* resources;
    int width, millimetres;
    double scale;
  };
  const Case cases[] = {
      {"Xcursor.size:\t24\nXft.dpi:\t192\nXft.rgba:\tnone\n", 1920, 0, 2},
      {"Xft.dpi: 120", 1920, 0, 1.25},
      {"Xft.dpi: 108", 1920, 0, 1.25},  // 1.125 goes up
      {"Xft.dpi: 72", 3840, 300, 1},    // never smaller than life
      {"Xft.dpi: nonsense", 3840, 300, 2},
      {"*Xft.dpi: 192", 1920, 500, 1},
      {"", 3840, 344, 2},  // 15.6" UHD
      {"", 3840, 600, 1},  // 27" UHD, 162 dpi
      {"", 1920, 509, 1},
      {"", 3840, 0, 1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(displayScale(xftDpi(c.resources), c.width, c.millimetres), c.scale) << c.resources << c.millimetres;
  }
}

TEST(CoordinateSpace, ScreensThatTouchInPixelsTouchInPointsAndBack) {
  const CoordinateSpace space{1.25, 1920, 1080};
  for (const PixelRect& r :
       {PixelRect{1920, 0, 1920, 1080}, PixelRect{0, 56, 1920, 1024}, PixelRect{3840, -7, 33, 11}}) {
    EXPECT_EQ(space.toPixels(space.toPoints(r)), r);
  }
  EXPECT_EQ(space.toPoints({1920, 0, 1920, 1080}), (Rect{0, 0, 1536, 864}));
  EXPECT_EQ(space.toPixels({1536 - 220 - 24, 864 - 56 - 24, 220, 56}), (PixelRect{3535, 30, 275, 70}));
}

}  // namespace
}  // namespace dormel::x11::test
