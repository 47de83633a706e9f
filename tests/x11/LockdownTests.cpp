#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <thread>

#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/Xkb.h"
#include "tests/x11/Fixture.h"

namespace dormel::x11::test {
namespace {

class LockdownTest : public testing::Test {
 protected:
  void SetUp() override {
    server->run({"setxkbmap", "-option", "terminate:ctrl_alt_bksp,grab:break_actions"});
    before = serverHotkeys();
    ASSERT_GT(waysOut(before), 20);
  }

  /// The actions of the core keyboard's keys and of XTEST's, as text.
  [[nodiscard]] std::string serverHotkeys() const {
    std::string text;
    for (const char* device : {"3", "5"}) {
      const std::string command = "xkbcomp -a -i " + std::string(device) + " " + server->display() +
                                  " - 2>/dev/null | grep -E '^ *(key|actions)'";
      FILE* pipe = popen(command.c_str(), "r");
      char line[512];
      while (std::fgets(line, sizeof line, pipe) != nullptr) text += line;
      pclose(pipe);
    }
    return text;
  }

  [[nodiscard]] static int waysOut(const std::string& actions) {
    int count = 0;
    for (const std::string kind : {"Terminate(", "SwitchScreen(", "Private("}) {
      for (auto at = actions.find(kind); at != std::string::npos; at = actions.find(kind, at + 1)) ++count;
    }
    return count;
  }

  void zap() {
    for (const int key : {29, 56, 14}) server->press(key);  // left Control, left Alt, Backspace
    for (const int key : {14, 56, 29}) server->release(key);
  }

  [[nodiscard]] bool canGrabPointer() const {
    const auto client = server->client();
    const auto reply = owned(xcb_grab_pointer_reply(
        *client, xcb_grab_pointer(*client, 0, client->root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, 0, 0, 0),
        nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
  }

  std::unique_ptr<XServer> server = XServer::withTwoMonitors();
  std::string before;
};

TEST_F(LockdownTest, KillsTheServersEscapeKeysAndGivesThemBackExactly) {
  Fixture desk(*server);
  bool isLost = false;
  desk.x11.setOnLost([&] { isLost = true; });
  desk.x11.setLockdown(true);
  EXPECT_EQ(waysOut(serverHotkeys()), 0);
  EXPECT_FALSE(canGrabPointer());
  {
    Witness meddler(*server);
    for (const xcb_window_t window : meddler.others()) xcb_destroy_window(meddler.connection(), window);
    meddler.connection().sync();
  }
  EXPECT_TRUE(until([&] { return !canGrabPointer(); })) << "free since the window that the grab stood on has gone";
  zap();
  spin(100);
  EXPECT_FALSE(isLost);

  // A new layout brings them back, for a moment.
  server->run({"setxkbmap", "de"});
  EXPECT_TRUE(until([&] { return waysOut(serverHotkeys()) == 0; }));
  server->run({"setxkbmap", "us"});
  EXPECT_TRUE(until([&] { return waysOut(serverHotkeys()) == 0; }));

  desk.x11.setLockdown(false);
  EXPECT_EQ(serverHotkeys(), before);
  EXPECT_TRUE(canGrabPointer());
  zap();  // as ever
  EXPECT_TRUE(until([&] { return isLost; }));
  EXPECT_FALSE(desk.x11.accessibility().isProcessTrusted());
  const auto window = desk.x11.windows().makeWindow(blockerStyle(), {0, 0, 10, 10});
  window->makeKeyAndOrderFront();  // harmless, if useless
}

TEST_F(LockdownTest, TheNextStartRepairsWhatACrashLeftAndNobodyDisturbsALivingLock) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t pid = fork();
  if (pid == 0) {
    const auto connection = server->client();
    const ServerFeatures features = ServerFeatures::query(*connection);
    Lockdown lockdown(connection, features, AccessXSuspension::create(connection, features));
    lockdown.set(true);
    connection->sync();
    if (write(ready[1], "!", 1) == 1) pause();
    _exit(1);
  }
  Child locker(pid);
  char mark = 0;
  ASSERT_EQ(read(ready[0], &mark, 1), 1);
  close(ready[0]);
  close(ready[1]);
  EXPECT_EQ(waysOut(serverHotkeys()), 0);
  { const Fixture second(*server); }
  EXPECT_EQ(waysOut(serverHotkeys()), 0) << "the first one is still at it";

  locker.kill();
  EXPECT_EQ(waysOut(serverHotkeys()), 0) << "they do not come back by themselves";
  { const Fixture next(*server); }
  EXPECT_EQ(serverHotkeys(), before);
}

TEST_F(LockdownTest, SlowKeysRestWhileItIsOnAndComeBackEvenAfterACrash) {
  const auto client = server->client();
  ASSERT_TRUE(ServerFeatures::query(*client).xkb);
  const auto change = [&](std::uint32_t aids) {
    const std::uint8_t unchanged[32] = {};
    xcb_xkb_set_controls(*client, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, aids, aids,
                         XCB_XKB_CONTROL_CONTROLS_ENABLED, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, unchanged);
    client->sync();
  };
  constexpr std::uint32_t SLOW = XCB_XKB_BOOL_CTRL_SLOW_KEYS;
  constexpr std::uint32_t BOUNCE = XCB_XKB_BOOL_CTRL_BOUNCE_KEYS;
  const auto on = [&] {
    const auto reply =
        owned(xcb_xkb_get_controls_reply(*client, xcb_xkb_get_controls(*client, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    return reply->enabledControls & (SLOW | BOUNCE);
  };
  change(SLOW);
  {
    Fixture desk(*server);
    desk.x11.setLockdown(true);
    EXPECT_EQ(on(), 0U);
    change(BOUNCE);
    EXPECT_TRUE(until([&] { return on() == 0; })) << "turned on meanwhile";
    desk.x11.setLockdown(false);
    EXPECT_EQ(on(), SLOW | BOUNCE);
    const auto tap = desk.x11.eventTaps().create([](const KeyEvent&) { return TapVerdict::swallow; });
    tap->enable(true);
    EXPECT_EQ(on(), 0U) << "a rehearsal has a tap, and no lockdown";
    tap->enable(false);
    EXPECT_EQ(on(), SLOW | BOUNCE);
    desk.x11.setLockdown(true);
  }
  EXPECT_TRUE(until([&] { return on() == (SLOW | BOUNCE); }));

  const auto connection = server->client();
  const ServerFeatures features = ServerFeatures::query(*connection);
  auto dying = std::make_unique<AccessX>(connection, features);
  dying->suspend(dying->ask(keyDevices(*connection, features)));
  connection->sync();
  EXPECT_EQ(on(), 0U);
  shutdown(xcb_get_file_descriptor(*connection), SHUT_RDWR);
  EXPECT_TRUE(until([&] { return on() == (SLOW | BOUNCE); })) << "the server does it, when nobody is left to";
}

TEST_F(LockdownTest, WhatKeysLockInTheServerIsAsBeforeWhenTheLockGoes) {
  ASSERT_TRUE(server->run({"setxkbmap", "us,ru", "-option", "", "-option", "grp:alt_shift_toggle,ctrl:swapcaps"}));
  const auto client = server->client();
  ASSERT_TRUE(ServerFeatures::query(*client).xkb);
  const auto locked = [&] {
    const auto reply =
        owned(xcb_xkb_get_state_reply(*client, xcb_xkb_get_state(*client, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    return std::pair(int{reply->lockedGroup}, int{reply->lockedMods});
  };
  const auto strike = [&](const std::vector<int>& keys) {
    for (const int key : keys) server->press(key);
    for (const int key : keys) server->release(key);
  };
  constexpr int LEFT_CONTROL = 29, LEFT_SHIFT = 42, LEFT_ALT = 56, NUM_LOCK = 69;
  strike({NUM_LOCK});
  strike({LEFT_ALT, LEFT_SHIFT});
  const auto before = locked();
  ASSERT_EQ(before.first, 1) << "the second layout";
  ASSERT_NE(before.second, 0);
  const auto pressAll = [&] {
    strike({LEFT_ALT, LEFT_SHIFT});
    strike({LEFT_CONTROL});  // which is Caps Lock
    EXPECT_NE(locked().first, before.first);
    EXPECT_NE(locked().second, before.second);
  };
  {
    Fixture desk(*server);
    desk.x11.setLockdown(true);
    const auto tap = desk.x11.eventTaps().create([](const KeyEvent&) { return TapVerdict::swallow; });
    tap->enable(true);
    desk.x11.setLockdown(false);
    pressAll();  // the keys stay swallowed for a moment
    tap->enable(false);
    EXPECT_EQ(locked(), before);

    tap->enable(true);
    pressAll();
    std::thread([&] { desk.x11.restoreAtExit(false); }).join();
    EXPECT_EQ(locked(), before) << "by a process that ends";
  }
  const auto connection = server->client();
  const ServerFeatures features = ServerFeatures::query(*connection);
  XkbLockState died(connection, features);
  died.remember(died.ask(keyDevices(*connection, features)));
  pressAll();  // and that process died
  { const Fixture next(*server); }
  EXPECT_EQ(locked(), before) << "by the next start";
}

TEST_F(LockdownTest, RestoresAtExitWhateverTheMainThreadIsDoing) {
  bool isLost = false;
  for (int round = 0; round < 5; ++round) {
    Witness document(*server);
    Fixture desk(*server);
    desk.x11.setOnLost([&] { isLost = true; });
    auto windows = desk.blockers();
    desk.cover(windows, 1);
    desk.x11.setLockdown(true);
    ASSERT_TRUE(until([&] { return waysOut(serverHotkeys()) == 0; }));
    std::atomic<bool> isDone = false;
    std::thread end([&] {
      desk.x11.restoreAtExit(false);
      isDone = true;
    });
    // The keymap that comes back is news to the main loop, which is used to taking the ways out of those.
    EXPECT_TRUE(until([&] { return isDone.load(); }));
    end.join();
    spin(100);
    EXPECT_EQ(serverHotkeys(), before);
    const auto focus =
        owned(xcb_get_input_focus_reply(document.connection(), xcb_get_input_focus(document.connection()), nullptr));
    EXPECT_EQ(focus->focus, document.window()) << "handed back";
  }
  EXPECT_FALSE(isLost) << "it is we who ended it";
}

TEST_F(LockdownTest, TheFocusGoesBackToWhoHadItBeforeTheLockThatEnds) {
  Witness first(*server);
  Fixture desk(*server);
  auto windows = desk.blockers();
  desk.cover(windows, 1);
  for (const auto& window : windows) window->orderOut();  // a grace begins, and somebody turns to something else
  Witness second(*server);
  desk.cover(windows, 1);
  desk.x11.setLockdown(true);
  std::thread([&] { desk.x11.restoreAtExit(false); }).join();
  const auto focus =
      owned(xcb_get_input_focus_reply(second.connection(), xcb_get_input_focus(second.connection()), nullptr));
  EXPECT_EQ(focus->focus, second.window());
}

}  // namespace
}  // namespace dormel::x11::test
