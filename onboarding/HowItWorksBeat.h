// A night in seventeen seconds, as a scripted scene: the lock, the challenge, the snooze, the morning. Main thread
// only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Texts.h"

namespace dormel {

class HowItWorksBeat : public OnboardingScreen {
 public:
  static constexpr double STAGE_WIDTH = 560;
  static constexpr double STAGE_HEIGHT = 250;

  HowItWorksBeat(const OnboardingModel& model, OnbAction go);

  OnbText kicker{*this, 0.2, translate("How Dormel works")};
  OnbPill button;  ///< held back until the scene is over

  /// 0 before the first, then 1 to 4. A block is visible only while its phase is the current one.
  [[nodiscard]] int phase() const { return phase_; }
  [[nodiscard]] bool canContinue() const { return button.reveal().released(); }

  // Phase 1.
  [[nodiscard]] const std::string& clock() const { return clock_; }      ///< "12:00", large and thin
  [[nodiscard]] const std::string& caption() const { return caption_; }  ///< "At midnight, your screen locks."
  // Phase 2. Pieces that are not strong are at half opacity.
  [[nodiscard]] static std::vector<OnbSpan> snoozeLine();
  [[nodiscard]] static std::vector<std::string> keycaps();
  [[nodiscard]] bool isHeld(std::size_t keycap) const { return static_cast<int>(keycap) < heldCount_; }
  [[nodiscard]] int heldCount() const { return heldCount_; }
  // Phase 3.
  /// How full the ring is at this moment, 0 to 1: to be read on every display frame while `ringFills`.
  [[nodiscard]] double ringProgress() const;
  [[nodiscard]] bool ringFills() const;
  [[nodiscard]] static std::vector<OnbSpan> graceLine();
  // Phase 4.
  [[nodiscard]] static std::string closingLine();     ///< semibold at 26 points
  [[nodiscard]] static std::string closingSubline();  ///< half opacity

 protected:
  void onAppear() override;

 private:
  void doStep(std::size_t index);

  std::string clock_;
  std::string caption_;
  Published<int> phase_{this, 0};
  Published<int> heldCount_{this, 0};
  Published<std::optional<Seconds>> ringSince_{this, std::nullopt};
};

}  // namespace dormel
