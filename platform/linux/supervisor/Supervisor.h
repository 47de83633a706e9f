// Keeps one job where no service manager does: starts it when it is loaded, at every login and at its start time, and
// again a second after it ended otherwise than it should. One process per job, one thread, asleep until something
// happens. It answers nobody: its lock says how it stands, and whoever wants it to do anything else kills it and starts
// another, which looks after the job's process from then on.
#pragma once

#include <string>

#include "platform/linux/jobs/JobLaunch.h"

namespace dormel::jobs::supervisor {

/// The supervisor's whole life, up to an exit status. Writes one byte to `ready`, and closes it, once the job is
/// loaded.
int supervise(const std::string& propertyList, int ready, const SessionDisplays& displays);

}  // namespace dormel::jobs::supervisor
