#include "onboarding/HowItWorksBeat.h"

#include <array>
#include <utility>

#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {
namespace {

constexpr Seconds RING_START = 10.8;

/// What changes when, in seconds from the start of the scene; -1 where nothing does.
struct Step {
  Seconds time;
  int phase = -1;
  int heldCount = -1;
  bool isEnd = false;
};
constexpr std::array STEPS{Step{1.2, 1},     Step{5.3, 2},     Step{5.9, -1, 1},        Step{6.1, -1, 2},
                           Step{6.3, -1, 3}, Step{6.5, -1, 4}, Step{6.7, -1, 5},        Step{10.3, 3},
                           Step{RING_START}, Step{15.3, 4},    Step{17.3, -1, -1, true}};

}  // namespace

HowItWorksBeat::HowItWorksBeat(const OnboardingModel& model, OnbAction go)
    : OnboardingScreen(OnboardingBeat::howItWorks) {
  add(Kind::kicker, 0.2, translate("How Dormel works"));
  add(Kind::scene, 0, {}, {.above = 32});
  button_ = &addButton(0, translate("Continue"), {.above = 32, .quiet = true, .released = false}, std::move(go));
  const int want = model.want->value_or(24);
  const int figure = dayHour(want) % 12;
  clock_ = std::to_string(figure == 0 ? 12 : figure) + ":00";
  caption_ = translate("At %1, your screen locks.", {spokenHour(want)});
}

void HowItWorksBeat::onAppear() {
  at(STEPS.front().time, [this] { doStep(0); });
}

void HowItWorksBeat::doStep(std::size_t index) {
  const Step& step = STEPS.at(index);
  if (step.phase >= 0) phase_ = step.phase;
  if (step.heldCount >= 0) heldCount_ = step.heldCount;
  if (step.time == RING_START) ringProgress_ = 1;
  if (step.isEnd) button_->release();
  if (index + 1 < STEPS.size()) at(STEPS.at(index + 1).time, [this, index] { doStep(index + 1); });
}

std::vector<OnbSpan> HowItWorksBeat::snoozeLine() {
  return headlineSpans(translate("To snooze it: hold *5 keys* for *30 seconds*"));
}

std::vector<std::string> HowItWorksBeat::keycaps() { return {"⇧", platform().wording.secondModifier(), "D", "O", "R"}; }

std::vector<OnbSpan> HowItWorksBeat::graceLine() {
  return headlineSpans(translate("A snooze lasts *5 minutes*. Then it locks again."));
}

}  // namespace dormel
