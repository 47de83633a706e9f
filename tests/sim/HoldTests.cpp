// The hold: five keys together, without a break, for as long as it takes, and not one moment less.
#include <gtest/gtest.h>

#include "challenge/KeyInterceptor.h"
#include "core/DebugLog.h"
#include "platform/sim/SimMachine.h"
#include "tests/sim/Fingers.h"

namespace dormel {
namespace {

class HoldTest : public testing::Test {
 protected:
  HoldTest() {
    controller->setOnBypassComplete([this] { ++completions; });
    EXPECT_TRUE(interceptor->start());
  }

  [[nodiscard]] KeyCode key(std::size_t index) const { return controller->requiredKeys()[index].keyCode; }
  void press(KeyCode keyCode) {
    machine.keyboard.press(keyCode);
    machine.settle();
  }
  void release(KeyCode keyCode) {
    machine.keyboard.release(keyCode);
    machine.settle();
  }

  SimMachine machine;
  std::shared_ptr<BypassController> controller = BypassController::create();
  std::shared_ptr<KeyInterceptor> interceptor = KeyInterceptor::create(controller);
  int completions = 0;
};

TEST_F(HoldTest, CompletesAtEqualityAndOnlyOnce) {
  pressAll(machine, *controller);
  controller->updateProgress();  // the clock starts at the first look that finds all keys down
  machine.jumpUptime(29.999999);
  controller->updateProgress();
  EXPECT_EQ(controller->liveSecondsRemaining(), 1);
  EXPECT_TRUE(controller->isPolling());
  machine.jumpUptime(0.000001);
  controller->updateProgress();
  EXPECT_FALSE(controller->isPolling());
  EXPECT_EQ(completions, 0) << "the owner is called in a later turn";
  machine.advance(100);
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(controller->liveProgress(), 1.0);
  EXPECT_EQ(controller->liveSecondsRemaining(), 0);
}

TEST_F(HoldTest, AnyReleasePutsTheClockBackToZero) {
  for (std::size_t i = 0; i < 5; ++i) {
    pressAll(machine, *controller);
    machine.advance(29.9);
    EXPECT_GT(controller->liveProgress(), 0.99);
    release(key(i));
    machine.advance(0.05);
    EXPECT_EQ(controller->liveProgress(), 0) << "key " << i;
    EXPECT_EQ(controller->liveSecondsRemaining(), 30);
    press(key(i));
    machine.advance(29.9);
    EXPECT_EQ(completions, 0) << "credit for the time before the release of key " << i;
    releaseAll(machine);
    machine.advance(0.05);
    EXPECT_FALSE(controller->isPolling()) << "nothing is down, nothing is to be polled";
  }
}

TEST_F(HoldTest, SpaceDrawsNewKeysOncePerPress) {
  pressAll(machine, *controller);
  machine.advance(29);
  const std::vector<RequiredKey> before = controller->requiredKeys();
  press(49);
  EXPECT_TRUE(controller->justReshuffled());
  EXPECT_NE(controller->requiredKeys(), before);
  EXPECT_TRUE(controller->pressedKeys().empty()) << "keys still held count only when they are pressed again";
  EXPECT_EQ(controller->liveProgress(), 0);

  const std::vector<RequiredKey> drawn = controller->requiredKeys();
  for (int i = 0; i < 5; ++i) machine.keyboard.repeat(49, true);
  machine.settle();
  EXPECT_EQ(controller->requiredKeys(), drawn);
  release(49);

  machine.advance(1);
  press(49);  // the notice starts anew
  machine.advance(1.4);
  EXPECT_TRUE(controller->justReshuffled());
  machine.advance(0.2);
  EXPECT_FALSE(controller->justReshuffled());
}

TEST_F(HoldTest, TrailTellsTheHold) {
  machine.advance(100);  // machines are never as young as this one
  DebugLog& log = DebugLog::shared();
  log.setEnabled(true);
  // Always the same keys: L.Shift, R.Option, A, S, H.
  machine.random.script(std::vector<std::uint64_t>(60, 1));
  controller->pickRandomKeys(false);
  controller->setHoldDuration(1);
  machine.keyboard.press(56);
  machine.keyboard.press(61);
  machine.advance(0.1);
  for (const KeyCode letter : {0, 1, 4}) machine.keyboard.press(letter);
  machine.advance(0.1);
  machine.keyboard.releaseUnheard(1);
  machine.advance(0.05);
  machine.keyboard.press(1);
  machine.advance(1.2);
  std::string trail;
  for (const std::string& line : log.lines()) trail += line.substr(sizeof "21:00:00.000  " - 1) + "\n";
  EXPECT_EQ(trail,
            "⟳ keys: L.Shift R.Option A S H\n"
            "⇧ L.Shift down\n"
            "⇧ R.Option down\n"
            "… waiting  [L.Shift:✓  R.Option:✓  A:·/·  S:·/·  H:·/·]\n"
            "↓ A\n"
            "↓ S\n"
            "↓ H\n"
            "▶ all keys held — clock start  [L.Shift:✓  R.Option:✓  A:✓/✓  S:✓/✓  H:✓/✓]\n"
            "  holding 0.0/1s  0%\n"
            "⌫ S hardware-up (caught Cmd-suppressed keyUp)\n"
            "⏸ released — clock reset to zero  [L.Shift:✓  R.Option:✓  A:✓/✓  S:·/·  H:✓/✓]\n"
            "↓ S\n"
            "▶ all keys held — clock start  [L.Shift:✓  R.Option:✓  A:✓/✓  S:✓/✓  H:✓/✓]\n"
            "  holding 0.0/1s  0%\n"
            "  holding 0.5/1s  50%\n"
            "  holding 1.0/1s  100%\n"
            "✔ HOLD COMPLETE (1.0s)\n");
}

}  // namespace
}  // namespace dormel
