// The last ninety nights, as the night log and the unlock log tell them: what a page or a terminal shows. It only
// reads; looking at the logs never changes them.
//
// A night belongs to the evening on which it began, and every evening of the ninety is there exactly once, whatever the
// logs hold. What cannot be understood in them leaves its night without a record and is told by `damaged`. All times
// are local: the unlock log has no others. Main thread.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Time.h"

namespace dormel {

/// "2026-11-17"
[[nodiscard]] std::string dateText(std::chrono::local_days day);

struct HistoryNight {
  /// What local clocks show, without the zone.
  using Stamp = std::chrono::local_seconds;
  struct Lock {
    Stamp at;
    std::string firedAt;  ///< the same as the night log has it
    std::int64_t idleSeconds = 0;
  };
  enum class State {
    unrecorded,
    kept,    ///< locked, and not opened
    opened,  ///< locked, and opened once or more
  };

  std::chrono::local_days evening;
  std::optional<Lock> lock;    ///< a night that was opened before it was recorded may have none
  std::vector<Stamp> unlocks;  ///< in the order of the clock
  bool isOver = true;

  [[nodiscard]] State state() const;
  /// "Tuesday, 17 November: locked at 23:00, opened once at 23:41"
  [[nodiscard]] std::string sentence(bool use24HourClock) const;
  /// 0 on Monday
  [[nodiscard]] int weekday() const;
};

struct NightHistory {
  static constexpr int NIGHTS = 90;
  static constexpr int RECENT = 30;

  /// Oldest first. The last is the present night, or by day the one before.
  std::vector<HistoryNight> nights;
  /// Something in the logs could not be read.
  bool damaged = false;

  [[nodiscard]] static NightHistory read(Date now);

  /// No night is recorded.
  [[nodiscard]] bool empty() const;

  // The figures. A night that still goes on counts once it has been opened; a night without a record was not kept.
  [[nodiscard]] int keptInARow() const;
  [[nodiscard]] int keptOfRecent() const;
  /// Median of the seconds from the last use of the computer to the lock.
  [[nodiscard]] std::optional<double> medianIdleSeconds() const;
  /// The same in whole minutes.
  [[nodiscard]] std::optional<int> medianIdleMinutes() const;

  // The grid: a column for each week from Monday on.
  [[nodiscard]] int columns() const { return column(nights.size() - 1) + 1; }
  [[nodiscard]] int column(std::size_t night) const { return (nights.front().weekday() + static_cast<int>(night)) / 7; }
  /// The columns in which months begin, with their short names. The first column counts, unless the next
  /// month begins beside it.
  [[nodiscard]] std::vector<std::pair<int, std::string>> months() const;
};

}  // namespace dormel
