// When the session lock is taken and when it is given back. A lock shows nothing but its own surfaces, so it is no part
// of a fade: it begins when the screens are black and ends before they clear. Plain computation.
#pragma once

namespace dormel {

class LockStages {
 public:
  enum class Stage {
    open,
    asked,  ///< the compositor has not answered
    locked,
    refused,  ///< another program's lock is up
  };
  enum class Step { nothing, lock, unlock };

  /// The desktop's ways out are to be out of the way.
  void setLockdown(bool on) {
    isLockdown_ = on;
    if (!on) takesOver_ = false;
  }
  /// Every screen is black with a panel of ours.
  void setCovered(bool isCovered) { isCovered_ = isCovered; }
  /// Panels that were black have begun to clear; or new ones have come up.
  void setLowering(bool isLowering) { isLowering_ = isLowering; }
  /// A lock was left behind by one of us that died. It shows nothing of what lies beneath: it is taken over as it is.
  void setAbandoned() { takesOver_ = true; }

  [[nodiscard]] Stage stage() const { return stage_; }
  /// What is to be done now. `lock` is asked for once, until an answer came.
  [[nodiscard]] Step next() {
    const bool isWanted = isLockdown_ && !isLowering_ && (isCovered_ || takesOver_ || stage_ == Stage::locked);
    if (isWanted && stage_ == Stage::open) {
      stage_ = Stage::asked;
      return Step::lock;
    }
    if (!isWanted && stage_ == Stage::locked) {
      stage_ = Stage::open;
      return Step::unlock;
    }
    return Step::nothing;
  }

  /// The compositor's answers.
  void locked() {
    stage_ = Stage::locked;
    takesOver_ = false;
  }
  void finished() { stage_ = Stage::refused; }
  /// It may be asked for again.
  void retry() {
    if (stage_ == Stage::refused) stage_ = Stage::open;
  }

 private:
  Stage stage_ = Stage::open;
  bool isLockdown_ = false;
  bool isCovered_ = false;
  bool isLowering_ = false;
  bool takesOver_ = false;
};

}  // namespace dormel
