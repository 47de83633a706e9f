// A night as it is drawn from its seed: the user, the machine, the calendar, and what happens when.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/SimCompositor.h"
#include "tools/nights/Happening.h"

namespace dormel::nights {

/// What the record file holds before the night.
enum class Records { none, few, old, malformed };

struct RandomNight {
  std::uint64_t seed = 0;

  /// True: the user opened the program and rehearses; else the scheduler starts it.
  bool opened = false;
  int startHour = 22;
  int endHour = 6;
  bool enabled = true;
  bool onboarded = true;
  bool debugLog = false;
  std::optional<bool> clock24;
  bool trusted = true;
  bool sidesReported = true;
  int screens = 1;
  SimCompositor::Desktop desktop = SimCompositor::Desktop::x11;
  std::optional<std::int64_t> idleSeconds;  ///< nothing: no input was ever seen
  Records records = Records::none;
  bool hasUnlockLog = false;

  /// When it begins, by local clocks (an hour east), and how long it is watched.
  std::chrono::sys_seconds begin;
  std::int64_t length = 0;  ///< milliseconds
  /// Summer time begins (60) or ends (-60) so long after the beginning.
  std::optional<std::int64_t> changeAfter;
  int change = 60;  ///< minutes

  std::vector<Happening> happenings;  ///< in order

  [[nodiscard]] static RandomNight drawn(std::uint64_t seed);
  /// What was drawn, but for the happenings, on one line.
  [[nodiscard]] std::string text() const;
};

/// "2026-11-16 22:00:00"
[[nodiscard]] std::string momentText(std::chrono::sys_seconds moment);

}  // namespace dormel::nights
