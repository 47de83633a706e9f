// The permission to take the keyboard: looks for it every second while it is shown, leads the user to it, and lets go
// on only with it. Main thread only.
#pragma once

#include <string>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {

class AccessibilityBeat : public OnboardingScreen {
 public:
  static constexpr double ROW_WIDTH = 400;

  explicit AccessibilityBeat(OnbAction go);

  OnbText headline{*this, 0.3, translate("Let's test Dormel.")};
  OnbText sub{*this, 1.2, platform().wording.permission().need};
  /// An icon, the name, and the "Grant" button or a check mark.
  OnbText row{*this, 2.2, platform().wording.permission().name};
  OnbPill button;

  [[nodiscard]] bool granted() const { return granted_; }
  /// Empty where there is nothing to open: then there is no such button.
  [[nodiscard]] std::string grantTitle() const { return granted_ ? "" : platform().wording.permission().grantButton; }
  /// What to do, below the row and with it; may be empty.
  [[nodiscard]] std::string advice() const { return granted_ ? "" : platform().wording.permission().advice; }
  /// The row's button: opens the desktop's settings, with a guide.
  void grant() const;

 protected:
  void onAppear() override;
  void onDisappear() override;

 private:
  void look();

  Published<bool> granted_;
  Timer poll_;
};

}  // namespace dormel
