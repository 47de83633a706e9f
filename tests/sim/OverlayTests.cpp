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

  SimMachine machine;
  std::shared_ptr<FakeSession> session = std::make_shared<FakeSession>();
  std::shared_ptr<BlockerOverlayView> view = BlockerOverlayView::create(session);
};

TEST_F(OverlayTest, StatusTellsWhatHappens) {
  EXPECT_EQ(view->state().statusText, "Good night. Time to sleep.");
  EXPECT_EQ(view->state().statusColor, color::white(0.40));
  pressAllByHand(machine, *session->controller);
  EXPECT_EQ(view->state().statusText, "Keep holding...");
  session->controller->handleKeyUp(session->controller->requiredKeys()[4].keyCode);
  EXPECT_EQ(view->state().statusText, "Good night. Time to sleep.");
  session->confirm = true;
  EXPECT_EQ(view->state().statusText, "");
  session->controller->handleKeyDown(49);
  EXPECT_EQ(view->state().statusText, "Keys reshuffled");
  EXPECT_EQ(view->state().statusColor, color::white(0.60));
  machine.advance(1.5);
  EXPECT_EQ(view->state().statusText, "");
}

TEST_F(OverlayTest, CapsSayMoreWhereTheirLabelsAreShared) {
  for (const KeyIndicator& cap : view->keys()) EXPECT_EQ(cap.legend, "") << cap.label;
  for (const KeyPool& key : session->controller->leftKeys()) machine.layout.set(key.keyCode, "σ");
  const auto greek = std::make_shared<FakeSession>();
  for (const KeyIndicator& cap : BlockerOverlayView::create(greek)->keys()) {
    EXPECT_EQ(cap.label == "Σ", cap.legend.starts_with("row ")) << cap.label << " " << cap.legend;
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
    EXPECT_EQ(view->state().clock, row.in24);
    EXPECT_EQ(view->state().amPm, "");
    machine.defaults.putBoolean(defaultsKey::use24HourClock, false);
    EXPECT_EQ(view->state().clock, row.in12);
    EXPECT_EQ(view->state().amPm, row.marker);
  }
}

TEST_F(OverlayTest, TellsOfTheClockOnlyWhenItReadsDifferently) {
  machine.defaults.putBoolean(defaultsKey::use24HourClock, true);
  machine.advanceTo("2026-11-16 23:04:01");
  int told = 0;
  const Observation observation = view->observe([&told] { ++told; });
  machine.advance(58);
  EXPECT_EQ(told, 0);
  machine.advance(2);
  EXPECT_EQ(told, 1);
  machine.defaults.putBoolean(defaultsKey::use24HourClock, false);  // as the settings of another process do
  machine.advance(1);
  EXPECT_EQ(told, 2);
  machine.advanceTo("2026-11-17 11:05:30");
  const int before = told;
  machine.jumpWallClock(12 * 3600);
  machine.advance(1);
  EXPECT_EQ(told, before + 1) << "the same digits, another half of the day";
}

TEST_F(OverlayTest, AppearsHalfwayThroughTheFadeInOrAtOnce) {
  view->onAppear();
  EXPECT_EQ(view->state().appearDuration, 2.5);
  machine.advance(1.2499);
  EXPECT_FALSE(view->state().appeared);
  machine.advance(0.0001);
  EXPECT_TRUE(view->state().appeared);

  session->fadesIn = false;
  const auto rebuilt = BlockerOverlayView::create(session);
  EXPECT_FALSE(rebuilt->state().appeared);
  rebuilt->onAppear();
  EXPECT_TRUE(rebuilt->state().appeared);
  EXPECT_EQ(rebuilt->state().appearDuration, 0);
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
  EXPECT_EQ(view->state().statusText, "Good night. Time to sleep.") << "the view stands still, and stands";
  EXPECT_EQ(view->state().appearDuration, 0);
}

}  // namespace
}  // namespace dormel
