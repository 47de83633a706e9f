// The permission to take the keyboard: looks for it every second while it is shown, leads the user to it, and lets go
// on only with it. Main thread only.
#pragma once

#include "onboarding/OnboardingScreen.h"

namespace dormel {

class AccessibilityBeat : public OnboardingScreen {
 public:
  explicit AccessibilityBeat(OnbAction go);

  [[nodiscard]] bool granted() const { return granted_; }

 protected:
  void onAppear() override;
  void onDisappear() override;

 private:
  void look();
  void show(bool granted);
  void grant() const;

  bool granted_ = false;
  OnbElement* row_ = nullptr;     // an icon, the name, and the button or a check mark
  OnbElement* advice_ = nullptr;  // what to do, with the row; may be empty
  OnbElement* button_ = nullptr;
  Timer poll_;
};

}  // namespace dormel
