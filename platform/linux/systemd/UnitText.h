// The texts of the unit files that a job becomes. Pure.
#pragma once

#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/jobs/Job.h"

namespace dormel::jobs::systemd {

/// The service that runs the job. `launcher` is the path of the program whose subcommands "permit" and "exec" it
/// goes through. `environment` is the job's alone: "NAME=value", or "NAME" for what the manager's must not hand down.
[[nodiscard]] std::string serviceUnit(const Job& job, const std::string& launcher,
                                      const std::vector<std::string>& environment);
/// The "NAME=value" entries in a service's text.
[[nodiscard]] std::vector<std::string> environmentIn(std::string_view service);

/// The timer that starts the service; for a job with a start time. `displaced` are starts that do not fall on
/// that time of day because the local clock skips it then. `zone` is the time zone by which it goes; empty for the
/// manager's.
[[nodiscard]] std::string timerUnit(const Job& job, const std::vector<std::time_t>& displaced, const std::string& zone);
/// The line of the timer for a daily start.
[[nodiscard]] std::string calendarLine(StartTime start, const std::string& zone);

/// The zone that a value of TZ means, as a calendar line can name it; empty when it cannot ("CET-1CEST").
[[nodiscard]] std::string zoneNamed(const std::string& tz);

/// `text` as one word of a command line in a unit file, whatever characters it holds.
[[nodiscard]] std::string commandWord(std::string_view text);

/// `text` as the value of a setting that is neither split into words nor unquoted.
[[nodiscard]] std::string plainValue(std::string_view text);

}  // namespace dormel::jobs::systemd
