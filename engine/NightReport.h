// The history of the nights in words and characters, for a terminal and for scripts. Any thread.
#pragma once

#include <string>

#include "engine/NightHistory.h"
#include "platform/Process.h"
#include "platform/Texts.h"

namespace dormel::NightReport {

inline constexpr const char* NO_NIGHTS = translatable("No night has been recorded yet.");
inline constexpr const char* DAMAGED = translatable("Some records cannot be read. What they told is missing here.");

/// The grid, the figures, and a sentence for each night that was opened; one sentence when there is no night. No line
/// is longer than `terminal` is wide, as far as single words and a column of the grid go; 80 where there is none.
/// Highlighted only on a terminal that allows it. No final line feed.
[[nodiscard]] std::string text(const NightHistory& history, const std::optional<Terminal>& terminal,
                               bool use24HourClock);

/// One JSON object on one line:
///   nights[]            oldest first: night ("2026-11-16"), state ("kept", "opened", "unrecorded"), over, lockedAt
///   (UTC)
///                       and idleSeconds (both null without a lock), unlocks[] (local time)
///   keptInARow, keptOfLast30, medianIdleSeconds (null without any), damaged
[[nodiscard]] std::string json(const NightHistory& history);

}  // namespace dormel::NightReport
