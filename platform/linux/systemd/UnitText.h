// The texts of the unit files that a job becomes. Pure.
#pragma once

#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/jobs/Job.h"

namespace dormel::jobs::systemd {

/// The service that runs the job. `launcher` is the path of the program whose subcommands "permit" and "exec" it
/// goes through.
[[nodiscard]] std::string serviceUnit(const Job& job, const std::string& launcher);

/// The timer that starts the service; for a job with a start time. `displaced` are starts that do not fall on
/// that time of day because the local clock skips it then.
[[nodiscard]] std::string timerUnit(const Job& job, const std::vector<std::time_t>& displaced);

/// `text` as one word of a command line in a unit file, whatever characters it holds.
[[nodiscard]] std::string commandWord(std::string_view text);

/// `text` as the value of a setting that is neither split into words nor unquoted.
[[nodiscard]] std::string plainValue(std::string_view text);

}  // namespace dormel::jobs::systemd
