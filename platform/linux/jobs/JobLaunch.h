// The last steps before a job's program runs, the same under every scheduler.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/jobs/Job.h"

namespace dormel::jobs {

/// Where this user's graphical sessions are besides what this process's environment says: for each the variables that
/// lead to its display, best first. Asked anew at every look.
using SessionDisplays = std::function<std::vector<std::vector<std::string>>()>;

/// Why the job must not start now, as one line: the user switched it off, its property list or its program is
/// gone, or neither this process's environment nor `others` name a display. Nothing when it may start. Such a job waits
/// for its next occasion; trying it again every second would help nobody.
[[nodiscard]] std::optional<std::string> reasonNotToStart(const std::string& label, const std::string& propertyList,
                                                          const std::string& program, const SessionDisplays& others);

/// Turns this process into the job's program: appends its output to the job's logs (their folders are created), and
/// sees to a display, see below. A log that cannot be opened costs the log, not the start. Returns the error when the
/// program cannot be started.
int becomeJob(const Job& job, const SessionDisplays& others);

/// Sees to it that this process's environment leads to a display that takes connections: the one it names, else one of
/// `others`; waits, asleep, for the first of them when none does, and says so in one line on standard error. A display
/// on another machine counts, without being tried, when there is nothing on this one.
void waitForDisplay(const std::string& name, const SessionDisplays& others);

}  // namespace dormel::jobs
