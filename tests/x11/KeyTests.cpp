#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/x11/EventTapX11.h"
#include "platform/linux/x11/HardwareKeysX11.h"
#include "platform/linux/x11/IdleX11.h"
#include "platform/linux/x11/LayoutX11.h"
#include "platform/linux/x11/Reply.h"
#include "tests/x11/XServer.h"

namespace dormel::x11::test {
namespace {

constexpr int KEY_A = 30;
constexpr int KEY_LEFT_CTRL = 29;
constexpr int KEY_RIGHT_CTRL = 97;
constexpr int KEY_LEFT_SHIFT = 42;
constexpr int KEY_RIGHT_SHIFT = 54;
constexpr int KEY_LEFT_ALT = 56;
constexpr int KEY_RIGHT_ALT = 100;
constexpr int KEY_KP_DIVIDE = 98;
constexpr int KEY_LEFT_SUPER = 125;
constexpr int KEY_MENU = 127;

struct Tapped {
  explicit Tapped(const XServer& server)
      : connection(server.client()),
        features(ServerFeatures::query(*connection)),
        taps(connection, features, AccessXSuspension::create(connection, features)),
        tap((taps.setOnLost([this] { ++cuts; }), taps.create([this](const KeyEvent& event) {
          events.push_back(event);
          return TapVerdict::swallow;
        }))),
        source(tap->makeRunLoopSource()) {
    spin(20);  // what a tap asks for is sent when the loop waits, or when keys are taken
  }

  /// The keys' part of what came, as "v0 ^0 ~56:20002".
  [[nodiscard]] std::string story() const {
    std::string text;
    for (const KeyEvent& event : events) {
      char one[32] = "";
      if (event.type == EventType::keyDown) std::snprintf(one, sizeof one, "v%d ", event.keyCode);
      if (event.type == EventType::keyUp) std::snprintf(one, sizeof one, "^%d ", event.keyCode);
      if (event.type == EventType::flagsChanged) {
        std::snprintf(one, sizeof one, "~%d:%lx ", event.keyCode, static_cast<unsigned long>(event.flags));
      }
      text += one;
    }
    return text;
  }
  [[nodiscard]] bool tells(const std::string& expected) {
    return until([&] { return story() == expected; }) || (ADD_FAILURE() << "came: " << story(), false);
  }
  [[nodiscard]] int losses() const {
    int count = 0;
    for (const KeyEvent& event : events) count += event.type == EventType::tapDisabledByUserInput ? 1 : 0;
    return count;
  }

  std::shared_ptr<Connection> connection;
  ServerFeatures features;
  EventTapsX11 taps;
  std::vector<KeyEvent> events;
  int cuts = 0;
  std::unique_ptr<EventTap> tap;
  std::unique_ptr<RunLoopSource> source;
};

TEST(EventTap, SwallowsEveryKeyWhileEnabledAndNoneOtherwise) {
  const auto server = XServer::withTwoMonitors();
  Witness witness(*server);
  Tapped tapped(*server);
  server->press(KEY_A);
  server->release(KEY_A);
  EXPECT_TRUE(tapped.tells("v0 ^0 "));
  EXPECT_EQ(witness.keysSeen(), 2) << "a disabled tap only listens";

  tapped.tap->enable(true);
  ASSERT_TRUE(tapped.tap->isEnabled());
  tapped.events.clear();
  server->press(KEY_A);
  spin(700);  // longer than the server takes to repeat a held key
  server->release(KEY_A);
  EXPECT_TRUE(tapped.tells("v0 ^0 ")) << "a held key is one key-down";
  EXPECT_EQ(witness.keysSeen(), 2);

  tapped.tap->enable(false);
  server->press(KEY_A);
  server->release(KEY_A);
  EXPECT_EQ(witness.keysSeen(), 4) << "given back";
}

TEST(EventTap, TakesALostGrabBackAtOnce) {
  const auto server = XServer::withTwoMonitors();
  ASSERT_TRUE(server->run({"setxkbmap", "-option", "grab:break_actions"}));
  Witness witness(*server);
  Tapped tapped(*server);
  tapped.tap->enable(true);
  for (const int key : {KEY_LEFT_CTRL, KEY_LEFT_ALT, KEY_KP_DIVIDE}) server->press(key);  // the server's "ungrab"
  EXPECT_TRUE(until([&] { return tapped.losses() == 1; }));
  EXPECT_TRUE(tapped.tap->isEnabled());
  for (const int key : {KEY_KP_DIVIDE, KEY_LEFT_ALT, KEY_LEFT_CTRL}) server->release(key);
  EXPECT_EQ(witness.keysSeen(), 0);

  // A meddling program takes down the window that the grab stands on.
  for (const xcb_window_t window : witness.others()) xcb_unmap_window(witness.connection(), window);
  witness.connection().sync();
  EXPECT_TRUE(until([&] { return tapped.losses() >= 2 && tapped.tap->isEnabled(); }));
  server->press(KEY_A);
  server->release(KEY_A);
  EXPECT_EQ(witness.keysSeen(), 0);

  // Or cuts its connection: nothing brings that back, and its owner must know.
  for (const xcb_window_t window : witness.others()) xcb_kill_client(witness.connection(), window);
  witness.connection().sync();
  EXPECT_TRUE(until([&] { return tapped.cuts == 1; }));
  EXPECT_FALSE(tapped.tap->isEnabled());
}

TEST(EventTap, TellsSidesApartAndCarriesFiveKeysAtOnce) {
  const auto server = XServer::withTwoMonitors();
  Tapped tapped(*server);
  tapped.tap->enable(true);
  const auto play = [&](const std::vector<int>& down, const std::vector<int>& up, const std::string& story) {
    tapped.events.clear();
    for (const int key : down) server->press(key);
    for (const int key : up) server->release(key);
    EXPECT_TRUE(tapped.tells(story));
  };
  play({KEY_LEFT_SHIFT, KEY_RIGHT_SHIFT}, {KEY_LEFT_SHIFT, KEY_RIGHT_SHIFT}, "~56:20002 ~60:20006 ~56:20004 ~60:0 ");
  play({KEY_LEFT_CTRL, KEY_RIGHT_ALT}, {KEY_LEFT_CTRL, KEY_RIGHT_ALT}, "~59:40001 ~61:c0041 ~59:80040 ~61:0 ");
  play({KEY_LEFT_SUPER, KEY_LEFT_ALT}, {KEY_LEFT_ALT, KEY_LEFT_SUPER}, "~55:100008 ~58:180028 ~58:100008 ~55:0 ");
  // Menu and right Control both stand in for a right Command key: one goes down, both must come up.
  play({KEY_MENU, KEY_RIGHT_CTRL}, {KEY_MENU, KEY_RIGHT_CTRL}, "~54:100010 ~54:0 ");
  play({KEY_LEFT_SHIFT, KEY_MENU, KEY_A, 33, 36}, {36, 33, KEY_A, KEY_MENU, KEY_LEFT_SHIFT},
       "~56:20002 ~54:120012 v0 v3 v38 ^38 ^3 ^0 ~54:20002 ~56:0 ");
}

TEST(EventTap, DoesNotCountKeysThatWereDownBefore) {
  const auto server = XServer::withTwoMonitors();
  server->press(KEY_A);
  server->press(KEY_LEFT_SHIFT);
  Tapped tapped(*server);
  tapped.tap->enable(true);
  server->press(KEY_RIGHT_SHIFT);
  EXPECT_TRUE(tapped.tells("~60:20006 ")) << "held modifiers show in the flags, and that is all";
  server->release(KEY_A);
  server->press(KEY_A);
  EXPECT_TRUE(tapped.tells("~60:20006 ^0 v0 "));
}

TEST(HardwareKeys, KnowsWhatIsDownUnderAnyGrab) {
  const auto server = XServer::withTwoMonitors();
  Witness other(*server);
  ASSERT_TRUE(other.grabKeyboard());
  const auto connection = server->client();
  const ServerFeatures features = ServerFeatures::query(*connection);
  const KeyNumbering numbering(connection, features);
  const HardwareKeysX11 keys(connection, features, numbering);
  EXPECT_FALSE(keys.isDown(0));
  const auto press = [&](int key) { return server->press(key), spin(5); };  // what is asked at once is known
  const auto release = [&](int key) { return server->release(key), spin(5); };
  press(KEY_A);
  press(KEY_RIGHT_CTRL);
  EXPECT_TRUE(keys.isDown(0));
  EXPECT_TRUE(keys.isDown(54));
  EXPECT_FALSE(keys.isDown(59));
  release(KEY_A);
  EXPECT_FALSE(keys.isDown(0));

  ASSERT_TRUE(server->run({"xinput", "create-master", "second"}));
  server->typeOn("second keyboard");
  press(KEY_A);
  EXPECT_TRUE(keys.isDown(0)) << "a keyboard of its own";
  release(KEY_A);
  EXPECT_FALSE(keys.isDown(0));
}

TEST(KeyNumbering, KeysAreKnownByTheirNamesWhateverTheServerNumbersThem) {
  const auto server = XServer::withTwoMonitors();
  const auto connection = server->client();
  connection->startPumping();
  const ServerFeatures features = ServerFeatures::query(*connection);
  const KeyNumbering numbering(connection, features);
  const HardwareKeysX11 keys(connection, features, numbering);
  const LayoutX11 layout(connection, features, numbering);
  Tapped tapped(*server);
  struct Numbers {
    const char* keycodes;
    int rightAlt, leftSuper, menu, up;  // X key codes less eight
  };
  for (const Numbers& n : {Numbers{"xfree86+aliases(qwerty)", 105, 107, 109, 90},
                           Numbers{"evdev+aliases(qwerty)", KEY_RIGHT_ALT, KEY_LEFT_SUPER, KEY_MENU, 103}}) {
    ASSERT_TRUE(server->run({"setxkbmap", "-keycodes", n.keycodes, "-layout", "us"}));
    spin(100);
    tapped.events.clear();
    for (const int key : {n.rightAlt, n.leftSuper, n.menu, n.up, KEY_A}) {
      server->press(key);
      spin(10);
      EXPECT_TRUE(keys.isDown(key == n.rightAlt    ? 61
                              : key == n.leftSuper ? 55
                              : key == n.menu      ? 54
                              : key == n.up        ? 126
                                                   : 0))
          << n.keycodes << " " << key;
      server->release(key);
    }
    EXPECT_TRUE(tapped.tells("~61:80040 ~61:0 ~55:100008 ~55:0 ~54:100010 ~54:0 v126 ^126 v0 ^0 ")) << n.keycodes;
    EXPECT_EQ(layout.translate(0), "a");
  }
}

TEST(InputIdle, CountsFromTheLastInput) {
  const auto server = XServer::withTwoMonitors();
  const auto connection = server->client();
  const IdleX11 idle(connection, ServerFeatures::query(*connection));
  spin(300);
  EXPECT_GE(idle.secondsSinceLast(InputKind::keyDown), 0.3);
  server->press(KEY_A);
  spin(10);
  EXPECT_LT(idle.secondsSinceLast(InputKind::mouseMoved), 0.2);
}

TEST(Layout, PrintsWhatTheServersKeymapPrints) {
  struct Case {
    std::vector<std::string> setxkbmap;
    const char* a;         // virtual key 0
    const char* q;         // 12
    const char* z;         // 6
    const char* s;         // 1
    const char* leftOfE;   // 13
    const char* rightOfL;  // 41, in no challenge
  };
  const Case cases[] = {
      {{"us"}, "a", "q", "z", "s", "w", ";"},
      {{"fr"}, "q", "a", "w", "s", "z", "m"},
      {{"ru"}, "ф", "й", "я", "ы", "ц", "ж"},
      {{"de"}, "a", "q", "y", "s", "w", "ö"},
      {{"us", "dvorak"}, "a", "'", ";", "o", ",", "s"},
      {{"us,ru"}, "a", "q", "z", "s", "w", ";"},  // several: the one in force
  };
  const auto server = XServer::withTwoMonitors();
  const auto connection = server->client();
  connection->startPumping();
  const ServerFeatures features = ServerFeatures::query(*connection);
  const KeyNumbering numbering(connection, features);
  const LayoutX11 layout(connection, features, numbering);
  for (const Case& c : cases) {
    std::vector<std::string> command{"setxkbmap"};
    command.insert(command.end(), c.setxkbmap.begin(), c.setxkbmap.end());
    ASSERT_TRUE(server->run(command));
    EXPECT_TRUE(until([&] { return layout.translate(0) == c.a && layout.translate(13) == c.leftOfE; }))
        << c.setxkbmap.front() << " " << layout.translate(0).value_or("nothing");
    EXPECT_EQ(layout.translate(12), c.q);
    EXPECT_EQ(layout.translate(6), c.z);
    EXPECT_EQ(layout.translate(1), c.s);
    EXPECT_EQ(layout.translate(41), c.rightOfL);
  }
  ASSERT_TRUE(server->run({"setxkbmap", "us,ru", "-option", "grp:shifts_toggle"}));
  server->press(KEY_LEFT_SHIFT);
  server->press(KEY_RIGHT_SHIFT);
  EXPECT_TRUE(until([&] { return layout.translate(0) == "ф"; })) << "the second layout is in force now";
  ASSERT_TRUE(server->run({"xmodmap", "-e", "keycode 38 = dead_acute"}));
  EXPECT_TRUE(until([&] { return layout.translate(0) == std::nullopt; })) << "a dead key prints nothing";
}

}  // namespace
}  // namespace dormel::x11::test
