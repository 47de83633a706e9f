#include "onboarding/qml/BeatBridge.h"

#include <utility>

#include "onboarding/DebriefBeat.h"
#include "onboarding/DemoBeat.h"
#include "onboarding/PromiseBeat.h"
#include "onboarding/qml/AccessibilityBridge.h"
#include "onboarding/qml/BrandBridge.h"
#include "onboarding/qml/ChipsBridge.h"
#include "onboarding/qml/FinaleBridge.h"
#include "onboarding/qml/HowItWorksBridge.h"
#include "onboarding/qml/MirrorBridge.h"
#include "onboarding/qml/ScienceBridge.h"
#include "onboarding/qml/WheelBridge.h"

namespace dormel {
namespace {

/// A screen that is a headline, a sub-line and a button.
template <typename Screen>
std::unique_ptr<BeatBridge> message(const std::shared_ptr<OnboardingScreen>& screen) {
  const auto& known = static_cast<const Screen&>(*screen);
  return std::make_unique<BeatBridge>(screen, QStringLiteral("MessageBeat"),
                                      BeatBridge::Parts{&known.headline, &known.sub, &known.button});
}

template <typename Bridge, typename Screen>
std::unique_ptr<BeatBridge> bridge(const std::shared_ptr<OnboardingScreen>& screen) {
  return std::make_unique<Bridge>(std::static_pointer_cast<Screen>(screen));
}

}  // namespace

BeatBridge::BeatBridge(std::shared_ptr<OnboardingScreen> screen, QString scene, const Parts& parts)
    : screen_(std::move(screen)), scene_(std::move(scene)), parts_(parts) {
  observation_ = screen_->observe([this] { emit changed(); });
}

OnbTextValue BeatBridge::headline() const {
  return parts_.headline != nullptr ? OnbTextValue::headline(*parts_.headline) : OnbTextValue();
}

OnbTextValue BeatBridge::sub() const {
  return parts_.sub != nullptr ? OnbTextValue::line(*parts_.sub) : OnbTextValue();
}

OnbPillValue BeatBridge::button() const {
  return parts_.button != nullptr ? OnbPillValue::of(*parts_.button) : OnbPillValue();
}

void BeatBridge::press() const {
  if (parts_.button != nullptr && parts_.button->canPress()) parts_.button->press();
}

std::unique_ptr<BeatBridge> makeBeatBridge(const std::shared_ptr<OnboardingScreen>& screen) {
  switch (screen->beat()) {
    case OnboardingBeat::brand:
      return bridge<BrandBridge, BrandBeat>(screen);
    case OnboardingBeat::promise:
      return message<PromiseBeat>(screen);
    case OnboardingBeat::q1Latest:
    case OnboardingBeat::q3Want:
      return bridge<WheelBridge, WheelQuestionBeat>(screen);
    case OnboardingBeat::q2Nights:
      return bridge<ChipsBridge, QuestionBeat>(screen);
    case OnboardingBeat::q4Keeps:
      return bridge<ChipsBridge, KeepsBeat>(screen);
    case OnboardingBeat::mirror:
      return bridge<MirrorBridge, MirrorBeat>(screen);
    case OnboardingBeat::howItWorks:
      return bridge<HowItWorksBridge, HowItWorksBeat>(screen);
    case OnboardingBeat::accessibility:
      return bridge<AccessibilityBridge, AccessibilityBeat>(screen);
    case OnboardingBeat::demo:
      return message<DemoBeat>(screen);
    case OnboardingBeat::debrief:
      return message<DebriefBeat>(screen);
    case OnboardingBeat::science:
      return bridge<ScienceBridge, ScienceBeat>(screen);
    case OnboardingBeat::schedule:
      return bridge<WheelBridge, ScheduleBeat>(screen);
    case OnboardingBeat::finale:
      return bridge<FinaleBridge, FinaleBeat>(screen);
  }
  return nullptr;
}

}  // namespace dormel
