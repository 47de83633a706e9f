#include "onboarding/DormelMarkDraw.h"

#include "onboarding/OnbMotion.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

double DormelMarkDraw::trim() const {
  return onbMotion::MARK_CURVE.at((screen_.elapsed() - onbMotion::MARK_DELAY) / onbMotion::MARK_DURATION);
}

}  // namespace dormel
