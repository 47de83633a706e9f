// What a locked-out user reads and sees at each moment.
#include <gtest/gtest.h>

#include "core/Config.h"
#include "overlay/BlockerOverlayView.h"
#include "overlay/BlockerWindow.h"
#include "overlay/GraceCountdownView.h"
#include "platform/sim/SimMachine.h"
#include "tests/sim/FakeSession.h"
#include "tests/sim/Fingers.h"

namespace dormel {
namespace {

class OverlayTest : public testing::Test {
 protected:
  OverlayTest() { EXPECT_EQ(view->kind(), ViewKind::blockerOverlay); }

  /// The challenge without an interceptor: events reach the controller by hand.
  void hold() {
    for (const RequiredKey& key : session->controller->requiredKeys()) {
      machine.keyboard.press(key.keyCode);
      if (key.isModifier) {
        session->controller->handleFlagsChanged(key.keyCode, machine.keyboard.flags());
      } else {
        session->controller->handleKeyDown(key.keyCode);
      }
    }
  }

  SimMachine machine;
  std::shared_ptr<FakeSession> session = std::make_shared<FakeSession>();
  std::shared_ptr<BlockerOverlayView> view = BlockerOverlayView::create(session);
};

TEST_F(OverlayTest, StatusTellsWhatHappens) {
  EXPECT_EQ(view->statusText(), "Good night. Time to sleep.");
  EXPECT_EQ(view->statusColor(), ink::white(0.40));
  hold();
  EXPECT_EQ(view->statusText(), "Keep holding...");
  session->controller->handleKeyUp(session->controller->requiredKeys()[4].keyCode);
  EXPECT_EQ(view->statusText(), "Good night. Time to sleep.");
  session->confirm = true;
  EXPECT_EQ(view->statusText(), "");
  session->controller->handleKeyDown(49);
  EXPECT_EQ(view->statusText(), "Keys reshuffled");
  EXPECT_EQ(view->statusColor(), ink::white(0.60));
  machine.advance(1.5);
  EXPECT_EQ(view->statusText(), "");
}

TEST_F(OverlayTest, ProgressGoesFromPaleToRed) {
  session->controller->setHoldDuration(10);
  hold();
  session->controller->updateProgress();
  const struct {
    Seconds held;
    Ink color;
    const char* seconds;
  } rows[] = {{0.2, ink::white(0.30), "10"}, {4.0, ink::white(0.30), "6"}, {4.001, ink::white(0.50), "6"},
              {8.0, ink::white(0.50), "2"},  {8.001, ink::red(0.80), "2"}, {12.0, ink::red(0.80), "0"}};
  Seconds held = 0;
  for (const auto& row : rows) {
    machine.jumpUptime(row.held - held);
    held = row.held;
    EXPECT_EQ(view->progressColor(), row.color) << held;
    EXPECT_EQ(view->secondsText(), row.seconds) << held;
  }
}

TEST_F(OverlayTest, KeyCaps) {
  machine.layout.setLegend(session->controller->requiredKeys()[0].keyCode, "Menu / Ctrl");
  machine.layout.setLegend(session->controller->requiredKeys()[2].keyCode, "never asked");
  const KeyCode third = session->controller->requiredKeys()[2].keyCode;
  session->controller->handleKeyDown(third);
  const std::vector<KeyIndicator> caps = view->keys();
  ASSERT_EQ(caps.size(), 5U);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(caps[i].width(), i < 2 ? 80 : 68);
    EXPECT_EQ(caps[i].isPressed, i == 2);
    EXPECT_EQ(caps[i].legend, i == 0 ? "Menu / Ctrl" : "");
    EXPECT_EQ(caps[i].fill(), i == 2 ? ink::white(1) : ink::white(i < 2 ? 0.05 : 0.08));
    EXPECT_EQ(caps[i].labelColor(), i == 2 ? ink::black(1) : ink::white(0.70));
    EXPECT_EQ(caps[i].border().alpha, i == 2 ? 0 : 0.15);
  }
}

TEST_F(OverlayTest, ClockInBothForms) {
  const struct {
    const char* moment;
    const char *in24, *in12, *marker;
  } rows[] = {{"2026-11-16 23:05:00", "23:05", "11:05", "PM"},
              {"2026-11-17 00:09:59", "00:09", "12:09", "AM"},
              {"2026-11-17 03:00:00", "03:00", "3:00", "AM"},
              {"2026-11-17 12:30:00", "12:30", "12:30", "PM"}};
  for (const auto& row : rows) {
    machine.advanceTo(row.moment);
    machine.defaults.putBoolean(defaultsKey::use24HourClock, true);
    EXPECT_EQ(view->clock(), row.in24);
    EXPECT_EQ(view->amPm(), "");
    machine.defaults.putBoolean(defaultsKey::use24HourClock, false);
    EXPECT_EQ(view->clock(), row.in12);
    EXPECT_EQ(view->amPm(), row.marker);
  }
}

TEST_F(OverlayTest, AppearsHalfwayThroughTheFadeInOrAtOnce) {
  view->onAppear();
  EXPECT_EQ(view->appearDuration(), 2.5);
  machine.advance(1.2499);
  EXPECT_FALSE(view->appeared());
  machine.advance(0.0001);
  EXPECT_TRUE(view->appeared());

  session->fadesIn = false;
  const auto rebuilt = BlockerOverlayView::create(session);
  EXPECT_FALSE(rebuilt->appeared());
  rebuilt->onAppear();
  EXPECT_TRUE(rebuilt->appeared());
  EXPECT_EQ(rebuilt->appearDuration(), 0);
}

TEST_F(OverlayTest, GracePill) {
  const auto pill = GraceCountdownView::create(session);
  int heard = 0;
  const Observation observation = pill->observe([&] { ++heard; });
  const struct {
    int seconds;
    const char* text;
    Ink color;
  } rows[] = {{245, "4:05 remaining", ink::white(0.60)}, {61, "1:01 remaining", ink::white(0.60)},
              {60, "1:00 remaining", ink::orange(1)},    {59, "59s remaining", ink::orange(1)},
              {31, "31s remaining", ink::orange(1)},     {30, "30s remaining", ink::red(1)},
              {5, "5s remaining", ink::red(1)},          {0, "0s remaining", ink::red(1)}};
  for (const auto& row : rows) {
    session->secondsRemaining = row.seconds;
    EXPECT_EQ(pill->graceText(), row.text);
    EXPECT_EQ(pill->urgencyColor(), row.color) << row.seconds;
    EXPECT_DOUBLE_EQ(pill->graceProgress(), row.seconds / 300.0);
  }
  EXPECT_EQ(heard, 8);
  session->total = 10;
  session->secondsRemaining = 5;
  EXPECT_DOUBLE_EQ(pill->graceProgress(), 0.5);
}

TEST_F(OverlayTest, WindowPassesKeysOnUntilTheSessionIsGone) {
  const auto blocker = BlockerWindow::blocker(*machine.screens.main(), session);
  const auto pill = BlockerWindow::gracePill(session);
  pill->window().makeKeyAndOrderFront();
  EXPECT_EQ(machine.windows.keyWindow(), nullptr) << "a pill never takes the focus";
  blocker->window().makeKeyAndOrderFront();
  EXPECT_EQ(machine.windows.cover(), 1);
  const auto controller = session->controller;

  pressAll(machine, *controller);
  EXPECT_TRUE(controller->allKeysHeld());
  releaseAll(machine);
  EXPECT_TRUE(controller->pressedKeys().empty());
  EXPECT_TRUE(machine.keyboard.foreignKeys().empty());

  session.reset();
  pressAll(machine, *controller);
  EXPECT_TRUE(controller->pressedKeys().empty());
  EXPECT_EQ(view->statusText(), "Good night. Time to sleep.") << "the view stands still, and stands";
  EXPECT_EQ(view->appearDuration(), 0);
}

}  // namespace
}  // namespace dormel
