#include "challenge/KeyInterceptor.h"

#include <gtest/gtest.h>

#include "platform/sim/SimMachine.h"
#include "tests/sim/Fingers.h"

namespace dormel {
namespace {

class KeyInterceptorTest : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;

  void tap(KeyCode keyCode) {
    machine.keyboard.press(keyCode);
    machine.keyboard.release(keyCode);
    machine.settle();
  }

  SimMachine machine;
  std::shared_ptr<BypassController> controller = BypassController::create();
  std::shared_ptr<KeyInterceptor> interceptor = KeyInterceptor::create(controller);
};

TEST_F(KeyInterceptorTest, SwallowsEveryKeyWhateverItMeans) {
  ASSERT_TRUE(interceptor->start());
  for (KeyCode keyCode = 0; keyCode < 128; ++keyCode) tap(keyCode);
  EXPECT_TRUE(machine.keyboard.foreignKeys().empty());
  interceptor->stop();
  tap(0);
  EXPECT_EQ(machine.keyboard.foreignKeys(), std::vector<KeyCode>{0});
}

TEST_F(KeyInterceptorTest, AStartThatFailsSaysSoAndLeavesNothing) {
  machine.accessibility.setTrusted(false);
  EXPECT_FALSE(interceptor->start());
  machine.accessibility.setTrusted(true);
  machine.keyboard.setTapsImpossible(true);
  EXPECT_FALSE(interceptor->start());
  EXPECT_EQ(machine.output.lines(), (Lines{"Accessibility permission not granted. Event tap unavailable.",
                                           "Failed to create event tap. Is Accessibility permission granted?"}));
  interceptor->stop();
  EXPECT_FALSE(interceptor->isRunning());
  EXPECT_FALSE(machine.timeline.advanceUntil([] { return false; }, 20));
  tap(0);
  EXPECT_EQ(machine.keyboard.foreignKeys().size(), 1U);
}

TEST_F(KeyInterceptorTest, WhileAnotherProgramHasTheKeyboardTheHoldGoesOn) {
  machine.keyboard.setGrabDenied(true);
  ASSERT_TRUE(interceptor->start());
  EXPECT_FALSE(machine.keyboard.isTaken());
  pressAll(machine, *controller);
  EXPECT_TRUE(controller->allKeysHeld());
  EXPECT_EQ(machine.keyboard.foreignKeys().size(), 5U) << "the other program gets them too";
  machine.keyboard.setGrabDenied(false);
  EXPECT_TRUE(machine.keyboard.isTaken());
}

TEST_F(KeyInterceptorTest, ALostTapComesBackWithinFiveSeconds) {
  ASSERT_TRUE(interceptor->start());
  for (const EventType how : {EventType::tapDisabledByTimeout, EventType::tapDisabledByUserInput}) {
    machine.advance(2.5);
    machine.keyboard.loseTap(how);
    machine.settle();
    EXPECT_FALSE(machine.keyboard.isTaken());
    EXPECT_TRUE(machine.timeline.advanceUntil([&] { return machine.keyboard.isTaken(); }, 5));
  }
  interceptor->stop();
  machine.advance(20);
  EXPECT_FALSE(machine.keyboard.isTaken()) << "a stopped interceptor takes the keyboard back";
}

}  // namespace
}  // namespace dormel
