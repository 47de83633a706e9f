// How fast logic is: whole nights per second, and what one key and one tick of a hold cost.
#include <benchmark/benchmark.h>

#include "tests/sim/NightFixture.h"

namespace dormel {
namespace {

/// 22:00 to 6:00 on two screens, three unlocks with all that belongs to them, and the exit. Journal off.
void wholeNight(benchmark::State& state) {
  for (auto _ : state) {
    NightFixture night;
    night.machine.setJournalEnabled(false);
    night.begin("2026-11-16 22:00:00");
    for (int unlock = 0; unlock < 3; ++unlock) {
      night.machine.advance(1800);
      night.unlock();
    }
    night.machine.advanceTo("2026-11-17 06:00:10");
    if (night.machine.exitStatus() != 0) state.SkipWithError("the night did not end as it should");
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(wholeNight)->Unit(benchmark::kMillisecond);

/// A required letter goes down and up.
void keyDownUp(benchmark::State& state) {
  NightFixture night;
  night.setHours(0, 6);
  night.machine.setJournalEnabled(false);
  night.begin("2026-11-17 00:00:00");
  BypassController& controller = night.controller();
  const KeyCode keyCode = controller.requiredKeys()[3].keyCode;
  for (auto _ : state) {
    controller.handleKeyDown(keyCode);
    controller.handleKeyUp(keyCode);
  }
  state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK(keyDownUp);

/// A letter that nobody asked for, which is most of what a locked-out user types.
void otherKeyDownUp(benchmark::State& state) {
  NightFixture night;
  night.machine.setJournalEnabled(false);
  night.begin("2026-11-16 22:00:00");
  BypassController& controller = night.controller();
  for (auto _ : state) {
    controller.handleKeyDown(36);
    controller.handleKeyUp(36);
  }
  state.SetItemsProcessed(2 * state.iterations());
}
BENCHMARK(otherKeyDownUp);

/// One look at a hold that goes on, all five keys down.
void updateProgress(benchmark::State& state) {
  NightFixture night;
  night.machine.setJournalEnabled(false);
  night.begin("2026-11-16 22:00:00");
  pressAll(night.machine, night.controller());
  BypassController& controller = night.controller();
  for (auto _ : state) controller.updateProgress();
  if (!controller.allKeysHeld()) state.SkipWithError("not held");
}
BENCHMARK(updateProgress);

/// A whole new challenge.
void pickRandomKeys(benchmark::State& state) {
  NightFixture night;
  night.machine.setJournalEnabled(false);
  night.begin("2026-11-16 22:00:00");
  for (auto _ : state) night.controller().pickRandomKeys(false);
}
BENCHMARK(pickRandomKeys);

}  // namespace
}  // namespace dormel
