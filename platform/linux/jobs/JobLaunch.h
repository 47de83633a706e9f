// The last steps before a job's program runs, the same under every scheduler.
#pragma once

#include <optional>
#include <string>

#include "platform/linux/jobs/Job.h"

namespace dormel::jobs {

/// Why the job must not start now, as one line: the user switched it off, its property list or its program is
/// gone, or this process's environment names no display. Nothing when it may start. Such a job waits for its
/// next occasion; trying it again every second would help nobody.
[[nodiscard]] std::optional<std::string> reasonNotToStart(const std::string& label, const std::string& propertyList,
                                                          const std::string& program);

/// Turns this process into the job's program: appends its output to the job's logs (their folders are created),
/// and, when the display it is meant for has gone away, first waits for it to come back. A log that cannot be
/// opened costs the log, not the start. Returns the error when the program cannot be started.
int becomeJob(const Job& job);

/// Waits until the X server of this process's environment takes connections. Returns at once where there is
/// nothing to wait for: a Wayland session, a server on another machine, no display.
void waitForDisplay();

}  // namespace dormel::jobs
