#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>
#include <xcb/shape.h>

#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/x11/Reply.h"
#include "tests/x11/Fixture.h"

namespace dormel::x11::test {
namespace {

constexpr std::uint32_t DESKTOP = 0x336699;
constexpr std::uint32_t CONTENT = CANVAS_COLOUR & 0xffffff;

class PanelTest : public testing::Test {
 protected:
  std::unique_ptr<XServer> server = XServer::withTwoMonitors();
  Witness desktop{*server, DESKTOP};

  /// The corners that no content reaches, on both monitors.
  [[nodiscard]] std::vector<std::uint32_t> ground() {
    return {server->pixel(3, 3), server->pixel(790, 590), server->pixel(803, 3), server->pixel(1430, 470)};
  }
  [[nodiscard]] bool isCovered() { return ground() == std::vector<std::uint32_t>(4, 0); }
  [[nodiscard]] bool isBare() { return ground() == std::vector<std::uint32_t>(4, DESKTOP); }
  [[nodiscard]] static int blue(std::uint32_t colour) { return static_cast<int>(colour & 0xff); }
};

TEST_F(PanelTest, CoversInBlackBeforeAnythingIsDrawnThenShowsItsContent) {
  Fixture desk(*server);
  const auto windows = desk.blockers();
  desk.cover(windows, 1);
  EXPECT_TRUE(isCovered()) << "in the very turn that ordered them in";
  EXPECT_EQ(server->pixel(400, 300), 0U);
  EXPECT_TRUE(desk.canvases.made.empty()) << "and nobody was asked to draw";
  EXPECT_TRUE(until([&] { return server->pixel(400, 300) == CONTENT && server->pixel(1120, 240) == CONTENT; }));
  ASSERT_EQ(desk.canvases.made.size(), 2U);

  // Only the changed part is repainted, at its place.
  desk.canvases.made[0]->paint(0xff00ff00, {50, 30, 2, 2});
  EXPECT_TRUE(until([&] { return server->pixel(401, 301) == 0x00ff00; }));
  EXPECT_EQ(server->pixel(399, 299), CONTENT);

  for (const auto& window : windows) window->orderOut();
  EXPECT_FALSE(desk.canvases.made[0]->isShowing);
  EXPECT_TRUE(until([&] { return isBare(); }));
}

TEST_F(PanelTest, ComesBackWhenAnotherProgramTakesItDown) {
  Fixture desk(*server);
  const auto windows = desk.blockers();
  desk.cover(windows, 1);
  const auto tree = owned(xcb_query_tree_reply(
      desktop.connection(), xcb_query_tree(desktop.connection(), desktop.connection().root()), nullptr));
  const xcb_window_t* children = xcb_query_tree_children(tree.get());
  const int count = xcb_query_tree_children_length(tree.get());
  const xcb_window_t top = children[count - 1];
  const xcb_window_t second = children[count - 2];
  const std::uint32_t away[] = {3000, 3000};
  xcb_unmap_window(desktop.connection(), top);
  xcb_configure_window(desktop.connection(), second, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, away);
  desktop.connection().sync();
  EXPECT_TRUE(until([&] { return isCovered(); }));
  xcb_destroy_window(desktop.connection(), top);
  desktop.connection().sync();
  EXPECT_TRUE(until([&] { return isCovered() && server->pixel(1120, 240) == CONTENT; }));

  Connection& other = desktop.connection();
  xcb_shape_rectangles(other, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED, second, 0, 0, 0,
                       nullptr);
  const xcb_atom_t opacity = other.atom("_NET_WM_WINDOW_OPACITY");
  const std::uint32_t glass = 0x10000000;
  xcb_change_property(other, XCB_PROP_MODE_REPLACE, second, opacity, XCB_ATOM_CARDINAL, 32, 1, &glass);
  other.sync();
  EXPECT_TRUE(until([&] { return isCovered() && other.property32(second, "_NET_WM_WINDOW_OPACITY").empty(); }))
      << "cut, and glass";
}

TEST_F(PanelTest, NeverUncoversDuringARebuild) {
  Fixture desk(*server);
  auto windows = desk.blockers();
  desk.cover(windows, 1);
  Camera camera(*server, DESKTOP);
  for (int i = 0; i < 40; ++i) {
    auto next = desk.blockers();
    desk.cover(next, 1);
    for (const auto& window : windows) window->orderOut();
    windows = std::move(next);
    spin(20);
  }
  camera.stop();
  EXPECT_GT(camera.pictures(), 100);
  EXPECT_EQ(camera.sightings(), 0);
}

TEST_F(PanelTest, StaysOnItsScreenWhenThatMovesInPixelsAndNotInPoints) {
  ASSERT_TRUE(server->run({"xrandr", "--output", "DUMMY1", "--primary"}));
  Fixture desk(*server);
  auto windows = desk.blockers();
  desk.cover(windows, 1);
  // As the session does it: other frames, other windows; the same frames, nothing.
  auto covered = desk.x11.screens().all();
  desk.x11.setOnScreensChanged([&] {
    const auto now = desk.x11.screens().all();
    if (std::equal(now.begin(), now.end(), covered.begin(), covered.end(),
                   [](const Screen& a, const Screen& b) { return a.frame == b.frame; })) {
      return;
    }
    covered = now;
    auto next = desk.blockers();
    desk.cover(next, 1);
    for (const auto& window : windows) window->orderOut();
    windows = std::move(next);
  });
  const auto isBlack = [&](int left, int top, int width, int height) {
    return until([&] {
      return server->pixel(left, top) == 0 && server->pixel(left + width - 1, top + height - 1) == 0 &&
             server->pixel(left + width / 2, top + height / 2) == CONTENT;
    });
  };
  server->configure("DUMMY0", std::nullopt);
  EXPECT_TRUE(until([&] { return covered.size() == 1; }));
  server->configure("DUMMY1", std::pair(0, 0));
  EXPECT_TRUE(isBlack(0, 0, 640, 480)) << "the corner of the main screen";

  // Twice the pixels, and twice the scale: as many points as before.
  ASSERT_TRUE(server->run({"sh", "-c", "echo Xft.dpi: 192 | xrdb -nocpp -override"}));
  server->plug("DUMMY1", 1280, 960, 0, 0);
  EXPECT_TRUE(isBlack(0, 0, 1280, 960)) << "pixels and scale together";
  EXPECT_EQ(covered.at(0).frame, (Rect{0, 0, 640, 480}));
  EXPECT_EQ(windows.at(0)->frame(), (Rect{0, 0, 640, 480}));
}

TEST(PanelMemory, ALargePictureIsReadWhereItLiesAndGivenBackOnceTheServerHasRead) {
  struct Case {
    const char* name;
    std::vector<std::string> server;
    bool isMemory;
    bool isReadByServer;
  };
  for (const Case& c : {Case{"as on every desktop", {}, true, true},
                        Case{"a server without the extension", {"-extension", "MIT-SHM"}, true, false},
                        Case{"a descriptor of something else", {}, false, false}}) {
    SCOPED_TRACE(c.name);
    const auto server = XServer::xorg(c.server);
    server->plug("DUMMY0", 800, 600, 0, 0);
    Fixture desk(*server);
    desk.canvases.fitting = {400, 300};
    const auto windows = desk.blockers();
    desk.cover(windows, 1);
    ASSERT_TRUE(until([&] { return server->pixel(400, 300) == CONTENT; }));
    PlainCanvas& canvas = *desk.canvases.made.at(0);

    constexpr std::uint32_t THERE = 0xff205080;  // what lies in the memory; what is sent is of another colour
    const std::size_t bytes = std::size_t{400} * 300 * 4;
    const posix::FileDescriptor fd(c.isMemory ? memfd_create("picture", MFD_CLOEXEC) : open("/dev/null", O_RDONLY));
    std::vector<std::uint32_t> picture(bytes / 4, THERE);
    if (c.isMemory) {
      ASSERT_EQ(pwrite(fd.get(), picture.data(), bytes, 0), static_cast<ssize_t>(bytes));
    }
    const auto memory = std::make_shared<int>();
    for (int frame = 0; frame < 3; ++frame) {
      auto hold = std::make_shared<int>();
      const std::weak_ptr<int> held = hold;
      canvas.shared = SharedPixels{memory, fd.get(), bytes, 0, std::move(hold)};
      canvas.paint(CANVAS_COLOUR, {0, 0, 400, 300});
      canvas.shared.reset();
      EXPECT_EQ(held.expired(), !c.isReadByServer);
      EXPECT_TRUE(until([&] { return held.expired(); })) << "given back";
      EXPECT_TRUE(until([&] { return server->pixel(400, 300) == (c.isMemory ? THERE & 0xffffff : CONTENT); }));
    }
  }
}

class FadeTest : public PanelTest, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    if (!GetParam()) return;
    picom = std::make_unique<Child>(std::vector<std::string>{"picom", "--backend", "xrender", "--config", "/dev/null"},
                                    server->display());
    ASSERT_TRUE(until([&] { return isComposited(*server); }));
    spin(300);  // it says so before it has painted anything
    ASSERT_TRUE(until([&] { return isBare(); }));
  }
  std::unique_ptr<Child> picom;
};

TEST_P(FadeTest, IsOneForTheWholeScreenAtEveryMomentOfIt) {
  Fixture desk(*server);
  const auto windows = desk.blockers();
  desk.cover(windows, 0);
  ASSERT_TRUE(until([&] { return desk.canvases.made.size() == 2; }));
  PlainCanvas& canvas = *desk.canvases.made[0];
  constexpr std::uint32_t BLACK = 0xff000000;  // as opaque as the ground beside it
  constexpr std::uint32_t GLASS = 0x80402010;  // half of a colour
  canvas.paint(BLACK, {0, 0, canvas.width(), canvas.height()});
  canvas.paint(CANVAS_COLOUR, {50, 0, 50, 30});
  canvas.paint(GLASS, {50, 30, 50, 30});
  struct Place {
    const char* what;
    int x, y;
    std::uint32_t colour;  // of the panel when it is all there
  };
  const Place places[] = {{"the ground", 3, 3, 0},
                          {"the content's ground", 360, 280, 0},
                          {"the content", 425, 280, CONTENT},
                          {"what lets the ground through", 425, 315, GLASS & 0xffffff}};
  for (const double alpha : {0.1, 0.5, 0.9, 0.5, 0.1}) {
    windows[0]->setAlpha(alpha);
    for (const Place& place : places) {
      const auto isMixed = [&] {
        const std::uint32_t seen = server->pixel(place.x, place.y);
        for (const int shift : {0, 8, 16}) {
          const auto part = [shift](std::uint32_t colour) { return static_cast<double>(colour >> shift & 0xff); };
          const double mixed = alpha * part(place.colour) + (1 - alpha) * part(DESKTOP);
          if (std::abs(part(seen) - mixed) > 3) return false;
        }
        return true;
      };
      EXPECT_TRUE(until(isMixed, 1000)) << place.what << " at " << alpha << " shows " << std::hex
                                        << server->pixel(place.x, place.y);
    }
  }
}

TEST_P(FadeTest, GoesToBlackAndLeavesTheDesktopAsItWas) {
  Fixture desk(*server);
  const auto windows = desk.blockers();
  desk.cover(windows, 0);
  for (int i = 0; i < 5; ++i) {
    spin(10);
    EXPECT_TRUE(isBare()) << "at alpha 0 nothing shows, not for a frame";
  }
  for (const double alpha : {1.0, 0.0}) {
    const int before = desk.completions;
    desk.fade(windows, alpha, 0.2);
    EXPECT_TRUE(until([&] { return desk.completions > before && (alpha == 1 ? isCovered() : isBare()); }));
  }
  for (const auto& window : windows) window->orderOut();
  EXPECT_TRUE(until([&] { return isBare() && server->pixel(400, 300) == DESKTOP; }));
}

INSTANTIATE_TEST_SUITE_P(Compositor, FadeTest, testing::Bool(),
                         [](const auto& info) { return info.param ? "With" : "Without"; });

TEST_F(PanelTest, ACompositorThatComesOrGoesNeverUncovers) {
  Fixture desk(*server);
  const auto windows = desk.blockers();
  desk.cover(windows, 0);
  windows[0]->setAlpha(0.5);
  windows[1]->setAlpha(1);
  ASSERT_TRUE(until([&] { return server->pixel(803, 3) == 0; }));
  const std::vector<std::string> command{"picom", "--backend", "xrender", "--config", "/dev/null"};
  auto picom = std::make_unique<Child>(command, server->display());
  const auto isHalf = [&] { return std::abs(blue(server->pixel(3, 3)) - blue(DESKTOP) / 2) < 4; };
  ASSERT_TRUE(until([&] { return isComposited(*server); }));
  EXPECT_TRUE(until(isHalf));
  picom.reset();
  EXPECT_TRUE(until([&] { return !isComposited(*server); }));
  EXPECT_TRUE(until([&] { return isCovered(); })) << "what was below is not known any more: black";
}

TEST_F(PanelTest, AKeyPanelHearsTheKeysAndGivesTheFocusBack) {
  Fixture desk(*server);
  std::string story;
  const auto monitor = desk.x11.windows().addLocalKeyDownMonitor([&](const KeyEvent& event) {
    story += "m" + std::to_string(event.keyCode) + " ";
    return event.keyCode == 53;
  });
  auto windows = desk.blockers();
  for (const auto& window : windows) {
    window->setKeyHandler([&](const KeyEvent& event) {
      story += (event.type == EventType::keyDown ? "v"
                : event.type == EventType::keyUp ? "^"
                                                 : "~") +
               std::to_string(event.keyCode) + " ";
    });
  }
  desk.cover(windows, 1);
  const auto key = [&](int evdev) {
    server->press(evdev);
    spin(20);
    server->release(evdev);
  };
  spin(50);
  key(30);
  key(1);
  server->press(30);
  spin(800);  // repeats
  server->release(30);
  key(42);
  EXPECT_TRUE(until([&] { return story == "m0 v0 ^0 m53 ^53 m0 v0 ^0 ~56 ~56 "; })) << story;

  // Another window takes the focus, as one does that opens: the panel wants it back.
  desktop.focus();
  story.clear();
  spin(50);
  key(30);
  EXPECT_TRUE(until([&] { return story == "m0 v0 ^0 "; })) << story;

  windows.clear();
  spin(20);
  const int before = desktop.keysSeen();
  key(30);
  EXPECT_EQ(desktop.keysSeen() - before, 2) << "back where it was";
}

TEST_P(FadeTest, ThePillIsDraggedByItsGroundAndHasItsOutline) {
  Fixture desk(*server);
  const auto pill = desk.x11.windows().makeWindow(pillStyle(), {0, 0, 400, 80});
  pill->setContent(std::make_shared<PlainView>());
  EXPECT_EQ(pill->contentFittingSize(), (Size{100, 60}));
  pill->setFrame({600, 480, 160, 80});  // pixels: 600,40
  pill->orderFrontRegardless();
  EXPECT_TRUE(until([&] { return server->pixel(680, 80) == CONTENT; }));
  EXPECT_EQ(server->pixel(610, 80), DESKTOP) << "nothing where the picture is transparent";
  EXPECT_EQ(desk.canvases.made.at(0)->width(), 24 + 160 + 24) << "with room for its shadow";

  const auto drag = [&](int from, int to) {
    server->movePointer(from, 80);
    server->button(true);
    server->movePointer(to, 280);
    server->button(false);
  };
  drag(610, 10);  // what is clear lets the pointer through
  drag(680, 580);
  EXPECT_TRUE(until([&] { return pill->frame() == (Rect{500, 280, 160, 80}); }));
  EXPECT_TRUE(until([&] { return server->pixel(580, 280) == CONTENT && server->pixel(680, 60) == DESKTOP; }));

  PlainCanvas& canvas = *desk.canvases.made.at(0);
  canvas.takesPointer = true;
  canvas.pointerStory.clear();
  server->button(true);
  server->movePointer(590, 290);
  server->button(false);
  EXPECT_TRUE(until([&] { return canvas.pointerStory.size() == 3; }));
  EXPECT_EQ(canvas.pointerStory, (std::vector<std::string>{"press 104,64", "move 114,74", "release 114,74"}));
  EXPECT_EQ(pill->frame(), (Rect{500, 280, 160, 80}));

  // An ordinary window covers it: it rises once. A blocker covers it: it stays below.
  Witness window(*server, 0xff0000);
  EXPECT_TRUE(until([&] { return server->pixel(580, 280) == CONTENT; }));
  const auto windows = desk.blockers();
  desk.cover(windows, 1);
  pill->orderFrontRegardless();
  spin(50);
  EXPECT_EQ(server->pixel(580, 200), 0U);
  EXPECT_EQ(server->pixel(500 + 80, 245), 0U);
}

}  // namespace
}  // namespace dormel::x11::test
