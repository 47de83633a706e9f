// The words of the simulated desktop, which has a settings page for every switch; or those of another one.
#pragma once

#include "platform/Wording.h"

namespace dormel {

class SimWording : public Wording {
 public:
  [[nodiscard]] std::string computer() const override { return other_ != nullptr ? other_->computer() : "Mac"; }
  [[nodiscard]] std::string secondModifier() const override {
    return other_ != nullptr ? other_->secondModifier() : "⌘";
  }
  [[nodiscard]] PermissionWords permission() const override;
  [[nodiscard]] PermissionCardWords permissionCard() const override;
  [[nodiscard]] RecoveryWords recovery(bool isSwitchedOff) const override;

  /// Speaks as another desktop from now on; it outlives this.
  void speakAs(const Wording& other) { other_ = &other; }

 private:
  const Wording* other_ = nullptr;
};

}  // namespace dormel
