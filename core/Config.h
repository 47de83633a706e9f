// The schedule and the flags, read afresh from the defaults store on every call, and the one test of the blocking
// hours. Holds no state; any thread. A stored value of the wrong type reads as absent.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/Time.h"

namespace dormel {

/// Keys of the defaults store.
namespace defaultsKey {
inline constexpr const char* blockStartHour = "blockStartHour";
inline constexpr const char* blockEndHour = "blockEndHour";
inline constexpr const char* blockingEnabled = "blockingEnabled";
inline constexpr const char* use24HourClock = "use24HourClock";
inline constexpr const char* onboardingComplete = "onboardingComplete";
inline constexpr const char* debugLoggingEnabled = "debugLoggingEnabled";
}  // namespace defaultsKey

namespace Config {

/// The start hours that pickers offer: 8 PM to 2 AM, in this order.
[[nodiscard]] std::span<const int> selectableStartHours();

/// Hour of the local day at which the lock starts; 0 when absent.
[[nodiscard]] int startHour();
/// Hour of the local day at which the lock ends; 6 when absent.
[[nodiscard]] int endHour();
/// The user's master switch; true when absent.
[[nodiscard]] bool blockingEnabled();
/// The first run was finished and the scheduler armed; false when absent.
[[nodiscard]] bool onboardingComplete();
/// 21:00 or 9:00 PM; the system's preference when absent.
[[nodiscard]] bool use24HourClock();
[[nodiscard]] bool systemPrefers24HourClock();
/// Stores the system's preference unless the user has one stored already.
void seedClockFormatFromSystem();

/// Whether `date` lies in the blocking hours: from the start hour's first second to the last second before the
/// end hour, across midnight if need be. Equal hours mean never.
[[nodiscard]] bool isBlockingNow(Date date);
/// Whether this hour of the local day is one of them.
[[nodiscard]] bool isBlockingHour(int hour);

/// How long the blocking hours still last at `date`: until the first full hour outside them, as the calendar goes. 0
/// outside them.
[[nodiscard]] Seconds blockingTimeLeft(Date date);

/// `selectableStartHours`, with `hour` put in its evening order when it is not among them.
[[nodiscard]] std::vector<int> startHourOptions(int hour);

/// The log folder and the two logs whose paths other parts need.
[[nodiscard]] std::string logDirectory();
[[nodiscard]] std::string stdoutLogPath();
[[nodiscard]] std::string unlockLogPath();
/// Creates the log folder with all folders above it; true when it is there afterwards.
bool ensureLogDirectory();

}  // namespace Config

/// Short 12-hour label: 9 PM, 12 AM. Any hour; -1 is 23 and 25 is 1.
[[nodiscard]] std::string nightHourLabel(int hour);

/// 12-hour label with minutes of an hour from 0 to 23: 9:00 PM, 12:00 AM.
[[nodiscard]] std::string hourLabel(int hour);

}  // namespace dormel
