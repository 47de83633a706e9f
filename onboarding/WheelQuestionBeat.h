// A question that a wheel answers. There is always an answer, so its button is always enabled. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "onboarding/OnbWheel.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class WheelQuestionBeat : public OnboardingScreen {
 public:
  /// `onContinue` gets the wheel's value, `done` is the title of the button that hands it over.
  WheelQuestionBeat(OnboardingBeat beat, const std::string& title, std::vector<OnbWheel::Option> options, int initial,
                    const std::string& done, std::function<void(int)> onContinue);

  [[nodiscard]] OnbWheel& wheel() { return *wheel_; }

 protected:
  void onAppear() override { wheel_->begin(); }
  void onDisappear() override { wheel_->end(); }

 private:
  std::unique_ptr<OnbWheel> wheel_;
};

}  // namespace dormel
