#include "onboarding/FinaleBeat.h"

#include <utility>

#include "platform/Texts.h"

namespace dormel {
namespace {

std::vector<OnbSpan> locksAtSpansOf(const OnboardingModel& model) {
  return headlineSpans(translate("Locks at *%1*", {spokenHour(model.lockNight)}));
}

}  // namespace

FinaleBeat::FinaleBeat(const OnboardingModel& model, OnbAction onFinish)
    : OnboardingScreen(OnboardingBeat::finale),
      locksAt(*this, 1.5, plainText(locksAtSpansOf(model))),
      button(*this, 5.4, {translate("Sleep Well")}, std::move(onFinish)),
      locksAtSpans_(locksAtSpansOf(model)) {}

}  // namespace dormel
