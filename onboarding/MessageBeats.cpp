#include "onboarding/MessageBeats.h"

#include <utility>

#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {

BrandBeat::BrandBeat(OnbAction go) : OnboardingScreen(OnboardingBeat::brand) {
  add(Kind::mark, 0.2, {}, {.size = 118});
  add(Kind::sub, 2.4, translate("Say hello to your good sleep."), {.above = 40});
  addButton(4.2, translate("Begin"), {.above = 48}, std::move(go));
}

PromiseBeat::PromiseBeat(OnbAction go) : OnboardingScreen(OnboardingBeat::promise) {
  add(Kind::headline, 0.3, translate("Your %1 locks at your bedtime.", {platform().wording.computer()}));
  add(Kind::sub, 1.5, translate("No willpower needed."), {.above = 16});
  addButton(3.0, translate("Continue"), {.above = 48}, std::move(go));
}

DebriefBeat::DebriefBeat(OnbAction go) : OnboardingScreen(OnboardingBeat::debrief) {
  add(Kind::headline, 0.3, translate("Well done!"));
  add(Kind::sub, 1.6,
      translate("Dormel locks your %1 at your selected time, every night.", {platform().wording.computer()}),
      {.above = 16});
  addButton(3.0, translate("Understood"), {.above = 48}, std::move(go));
}

FinaleBeat::FinaleBeat(const OnboardingModel& model, OnbAction onFinish) : OnboardingScreen(OnboardingBeat::finale) {
  add(Kind::headline, 0.3, translate("Setting up your dormel…"));
  add(Kind::line, 1.5, translate("Locks at *%1*", {spokenHour(model.lockNight)}), {.above = 32, .size = 20});
  add(Kind::note, 2.7, translate("Every night, automatically"), {.above = 16});
  add(Kind::note, 3.9, translate("Gone by morning"), {.above = 12});
  addButton(5.4, translate("Sleep Well"), {.above = 48}, std::move(onFinish));
}

}  // namespace dormel
