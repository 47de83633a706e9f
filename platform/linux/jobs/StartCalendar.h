// When a daily start time comes next, by the local clock.
//
// A day on which the clock jumps over the start time (summer time begins) starts at the first moment after the
// jump: a night must not go by unlocked because its hour was skipped. A start time that comes twice counts once.
#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "platform/linux/jobs/Job.h"

namespace dormel::jobs {

/// The first start after the moment `after`.
[[nodiscard]] std::time_t nextStart(StartTime start, std::time_t after);

/// The starts, from `from` on for `days` days, that fall on another time of day because theirs was skipped.
[[nodiscard]] std::vector<std::time_t> startsSkippedByClockChange(StartTime start, std::time_t from, int days);

/// "22:05".
[[nodiscard]] std::string clockText(StartTime start);
/// "2026-11-23 22:05:00 CET".
[[nodiscard]] std::string localTimeText(std::time_t moment);

}  // namespace dormel::jobs
