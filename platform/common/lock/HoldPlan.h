// What a process has its desktop's shell hold for it: the cover over all monitors and all keys. The shell goes on
// holding when its program dies, so each hold says until when at most, and for how long without its program; the next
// run takes it over as it is. Plain computation.
#pragma once

#include <functional>
#include <optional>

#include "platform/Time.h"

namespace dormel {

/// The whole of what is to be held from now on.
struct ShellHold {
  bool cover = false;
  bool keys = false;
  Seconds absence = 0;        ///< how long it outlives the program; 0: not at all, which is a rehearsal
  std::optional<Date> until;  ///< in whole seconds; given where `absence` is not 0
  friend bool operator==(const ShellHold&, const ShellHold&) = default;
};

class HoldPlan {
 public:
  enum class Step {
    nothing,
    hold,      ///< it is another than before
    holdAnew,  ///< nothing was held: the shell has to be told of all panels, too
    release,
  };
  /// The panels that are up.
  struct Panels {
    bool areAny = false;
    bool isAnyBlack = false;
    bool areBlackOpaque = true;  ///< none of the black ones lets anything through, or fades
    bool isAnyKey = false;       ///< one wants to be typed into
  };
  /// How long this process may go on at most; nothing while nobody limits it.
  using Limit = std::function<std::optional<Seconds>()>;

  /// The scheduler starts us again after a second; what has not come back after minutes will not, and must not keep
  /// anybody locked out.
  static constexpr Seconds ABSENCE = 120;
  /// While something is to be held: what was refused may be had now, and the end may have moved.
  static constexpr Seconds LOOK_EVERY = 5;
  static constexpr Seconds COME_BACK_EVERY = 0.25;
  static constexpr Seconds GIVEN_UP_AFTER = 10;

  /// A shell answers, and has this covered for an earlier run of ours or for us.
  void connected(bool isCovered) {
    forget();
    lostAt_.reset();
    // A lock that was left must not end before we cover: a fade of ours would uncover it.
    wasCovered_ = wasCovered_ || ((isLockdown_ || isFirst_) && isCovered);
    isFirst_ = false;
  }
  void lost(Seconds uptime) {
    forget();
    lostAt_ = uptime;
  }
  [[nodiscard]] bool isGivenUp(Seconds uptime) const { return lostAt_ && uptime - *lostAt_ >= GIVEN_UP_AFTER; }
  /// The shell does not hold it, or no longer: the next look asks again.
  void refused() { forget(); }

  void setLockdown(bool on) {
    isLockdown_ = on;
    if (!on) wasCovered_ = false;
  }
  void setKeysWanted(bool on) { areKeysWanted_ = on; }

  /// Something is to be held.
  [[nodiscard]] bool isWanted(const Panels& panels) const { return panels.areAny || isLockdown_ || areKeysWanted_; }
  /// What to tell the shell now. It counts as told.
  [[nodiscard]] Step next(const Panels& panels, Date now, const Limit& limit);
  [[nodiscard]] bool isHolding() const { return told_.has_value(); }
  /// As it was told last, while `isHolding`.
  [[nodiscard]] const ShellHold& hold() const { return *told_; }

 private:
  void forget() { told_.reset(); }

  std::optional<ShellHold> told_;
  std::optional<Seconds> lostAt_;
  bool isFirst_ = true;
  bool isLockdown_ = false;
  bool areKeysWanted_ = false;
  bool wasCovered_ = false;
};

}  // namespace dormel
