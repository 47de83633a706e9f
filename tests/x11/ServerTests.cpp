// Servers that are missing, lacking, or dying.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <thread>

#include "tests/x11/Fixture.h"

namespace dormel::x11::test {
namespace {

TEST(Server, WithoutADisplayThereAreNoScreensAndNoTrustAndWindowsThatNobodySees) {
  posix::PosixClock clock;
  PlainCanvases canvases;
  X11Platform x11(loop(), canvases, clock, ":987");
  EXPECT_FALSE(x11.hasDisplay());
  EXPECT_FALSE(x11.accessibility().isProcessTrusted());
  EXPECT_TRUE(x11.screens().all().empty());
  EXPECT_EQ(x11.screens().main(), std::nullopt);
  EXPECT_EQ(x11.eventTaps().create([](const KeyEvent&) { return TapVerdict::pass; }), nullptr);
  EXPECT_FALSE(x11.hardwareKeys().isDown(0));
  EXPECT_LT(x11.inputIdle().secondsSinceLast(InputKind::keyDown), 0);
  EXPECT_EQ(x11.keyboardLayout().translate(0), std::nullopt);
  EXPECT_EQ(x11.windows().addLocalKeyDownMonitor([](const KeyEvent&) { return false; }), nullptr);
  x11.setLockdown(true);
  x11.setLockdown(false);
  x11.restoreAtExit(false);
  const auto window = x11.windows().makeWindow(blockerStyle(), {0, 0, 800, 600});
  window->makeKeyAndOrderFront();
  EXPECT_TRUE(window->isVisible());
  bool isDone = false;
  x11.windows().animateAlpha({window}, 0, 0.05, TimingCurve::linear, [&] { isDone = true; });
  EXPECT_TRUE(until([&] { return isDone; }));
  EXPECT_EQ(window->alpha(), 0);
  EXPECT_FALSE(x11.runningApplications().frontmost());
  EXPECT_FALSE(x11.windowList().onScreen());
}

TEST(Server, OneThatRefusesIsLookedForWithoutAWord) {
  const std::string path = "/tmp/.X11-unix/X978";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(&address.sun_path[1], path.c_str(), path.size());  // an abstract name, which leaves no file
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + path.size());
  ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), length), 0);
  ASSERT_EQ(::listen(listener, 2), 0);
  std::thread server([&] {
    for (int i = 0; i < 2; ++i) {
      const int client = ::accept(listener, nullptr, nullptr);
      const unsigned char refusal[] = {0, 4, 11, 0, 0, 0, 1, 0, 'N', 'o', '.', '\n'};
      static_cast<void>(!::write(client, refusal, sizeof refusal));
      char rest[64];
      while (::read(client, rest, sizeof rest) > 0) {
      }
      ::close(client);
    }
  });
  testing::internal::CaptureStderr();
  EXPECT_EQ(Connection::open(":978"), nullptr);
  EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("No.")) << "as libxcb does by itself";
  testing::internal::CaptureStderr();
  EXPECT_FALSE(Connection::answers(":978"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  server.join();
  ::close(listener);
}

TEST(Server, WithoutRandRTheRootIsTheScreen) {
  const auto server = XServer::xorg({"-extension", "RANDR"});
  Fixture desk(*server);
  const auto screens = desk.x11.screens().all();
  ASSERT_EQ(screens.size(), 1U);
  EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1024, 768}));
  EXPECT_TRUE(desk.x11.accessibility().isProcessTrusted());
}

TEST(Server, WithoutRenderOrACompositorTheLockIsStillBlackWithItsContent) {
  const auto server = XServer::xorg({"-extension", "RENDER", "-extension", "Composite"});
  const Witness desktop(*server);
  Fixture desk(*server);
  const auto windows = desk.blockers();
  desk.cover(windows, 0.0);
  desk.fade(windows, 1, 0.1);
  EXPECT_EQ(server->pixel(3, 3), 0U);
  EXPECT_TRUE(until([&] { return desk.completions == 1 && server->pixel(512, 384) == (CANVAS_COLOUR & 0xffffff); }));
}

TEST(Server, WithoutXInputOrThroughAWaylandBridgeThereIsNoTrustAndNoTap) {
  const auto server = XServer::withTwoMonitors();
  struct Case {
    const char* asked;
    const char* answered;
    bool isTrusted;
  };
  for (const Case& c : {Case{"MIT-SHM", "MIT-???", true}, Case{"XInputExtension", "XInput?????????", false},
                        Case{"XWAYLAND", "XINERAMA", false}}) {
    const Masquerade front(*server, c.asked, c.answered);
    Fixture desk(front.display());
    ASSERT_TRUE(desk.x11.hasDisplay());
    EXPECT_EQ(desk.x11.accessibility().isProcessTrusted(), c.isTrusted) << c.asked;
    const auto tap = desk.x11.eventTaps().create([](const KeyEvent&) { return TapVerdict::pass; });
    EXPECT_EQ(tap != nullptr, c.isTrusted) << c.asked;
    EXPECT_EQ(desk.x11.screens().all().size(), 2U);
    const auto windows = desk.blockers();
    desk.cover(windows, 1);
    EXPECT_TRUE(until([&] { return server->pixel(400, 300) == (CANVAS_COLOUR & 0xffffff); })) << c.asked;
  }
}

TEST(Server, ItsDeathIsToldOnce) {
  const auto server = XServer::withTwoMonitors();
  Fixture desk(*server);
  int losses = 0;
  desk.x11.setOnLost([&] { ++losses; });
  const auto windows = desk.blockers();
  desk.cover(windows, 1);
  const auto tap = desk.x11.eventTaps().create([](const KeyEvent&) { return TapVerdict::swallow; });
  const auto source = tap->makeRunLoopSource();
  tap->enable(true);
  server->crash();
  EXPECT_TRUE(until([&] { return losses > 0; }));
  spin(200);
  EXPECT_EQ(losses, 1);
  EXPECT_FALSE(desk.x11.accessibility().isProcessTrusted());
  EXPECT_FALSE(desk.x11.hardwareKeys().isDown(0));
}

TEST(Server, TimersGoOnWhileEventsComeFasterThanTheyAreHandled) {
  const auto server = XServer::withTwoMonitors();
  const auto connection = server->client();
  connection->startPumping();
  xcb_client_message_event_t again{};
  again.response_type = XCB_CLIENT_MESSAGE;
  again.format = 32;
  again.window = connection->newId();
  xcb_create_window(*connection, XCB_COPY_FROM_PARENT, again.window, connection->root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_COPY_FROM_PARENT, XCB_COPY_FROM_PARENT, 0, nullptr);
  const auto send = [&] {
    xcb_send_event(*connection, 0, again.window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&again));
  };
  // Each one that is handled brings another, and asking the server anything reads what has come in meanwhile.
  constexpr int ENOUGH = 20000;
  int handled = 0;
  const auto storm = connection->subscribe([&](const xcb_generic_event_t&) {
    if (++handled < ENOUGH) send();
    connection->sync();
  });
  int handledBefore = ENOUGH;
  const Timer later = Timer::once(loop(), 0.02, [&] { handledBefore = std::min(handled, handledBefore); });
  for (int i = 0; i < 100; ++i) send();
  EXPECT_TRUE(until([&] { return handledBefore < ENOUGH || handled >= ENOUGH; }, 20000));
  EXPECT_LT(handledBefore, ENOUGH);
}

}  // namespace
}  // namespace dormel::x11::test
