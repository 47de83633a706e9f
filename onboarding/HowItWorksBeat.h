// A night in seventeen seconds, as a scripted scene: the lock, the challenge, the snooze, the morning. Main thread
// only.
#pragma once

#include <string>
#include <vector>

#include "onboarding/OnbSpan.h"
#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"

namespace dormel {

class HowItWorksBeat : public OnboardingScreen {
 public:
  HowItWorksBeat(const OnboardingModel& model, OnbAction go);

  /// 0 before the first, then 1 to 4. A block is visible only while its phase is the current one.
  [[nodiscard]] int phase() const { return phase_; }
  [[nodiscard]] bool canContinue() const { return button_->released(); }

  // Phase 1.
  [[nodiscard]] const std::string& clock() const { return clock_; }      ///< "12:00", large and thin
  [[nodiscard]] const std::string& caption() const { return caption_; }  ///< "At midnight, your screen locks."
  // Phase 2. Pieces that are not strong are at half opacity.
  [[nodiscard]] static std::vector<OnbSpan> snoozeLine();
  [[nodiscard]] static std::vector<std::string> keycaps();
  [[nodiscard]] int heldCount() const { return heldCount_; }
  // Phase 3.
  /// Where the ring's end is, or is on its way to, linearly within RING_DURATION: 0 or 1.
  [[nodiscard]] double ringProgress() const { return ringProgress_; }
  static constexpr Seconds RING_DURATION = 3.0;
  [[nodiscard]] static std::vector<OnbSpan> graceLine();

 protected:
  void onAppear() override;

 private:
  void doStep(std::size_t index);

  std::string clock_;
  std::string caption_;
  Published<int> phase_{this, 0};
  Published<int> heldCount_{this, 0};
  Published<double> ringProgress_{this, 0};
  OnbElement* button_ = nullptr;  // held back until the scene is over
};

}  // namespace dormel
