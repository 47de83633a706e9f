// What both job schedulers offer, in the same words: `systemd/SystemdScheduler` and `supervisor/SupervisorScheduler`.
// Calls block until the job is in the state they promise.
//
// find(label)     The job as the scheduler has it; nothing when it is not loaded whole, goes by an older property list,
// or
//                 belongs to another display than the one this process would give it.
// load(job)       Brings the scheduler to what the job's property list says now, whatever it knew of it before, with
// this
//                 process's session environment for the job. A job that runs at load then runs; if it was running
//                 already it keeps running, unless it runs on another display. Nothing on success, else why not.
// unload(label)   Forgets the job and ends its process: a termination signal, five seconds later the kill. A process
// that
//                 the caller descends from is left to end by itself, without being started again: a job may take itself
//                 out without being cut off half-way. False when there was nothing to forget.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dormel::jobs {

/// The helper's exit statuses.
namespace status {
inline constexpr int ok = 0;
inline constexpr int noSuchJob = 3;
inline constexpr int ioError = 5;
inline constexpr int alreadyLoaded = 37;
inline constexpr int usage = 64;
inline constexpr int couldNotFind = 113;
inline constexpr int switchedOff = 125;
}  // namespace status

/// What there is to say about a loaded job, in the order in which it is printed: names and values.
using JobReport = std::vector<std::pair<std::string, std::string>>;
/// Empty where it says nothing about that.
[[nodiscard]] inline std::string valueIn(const JobReport& report, std::string_view name) {
  const auto found = std::find_if(report.begin(), report.end(), [&](const auto& entry) { return entry.first == name; });
  return found == report.end() ? std::string() : found->second;
}

}  // namespace dormel::jobs
