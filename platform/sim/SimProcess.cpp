#include "platform/sim/SimProcess.h"

#include <utility>

namespace dormel {
namespace {

constexpr int KILLED_BY_SIGNAL = 128;
constexpr int SIGNAL_KILL = 9;
constexpr int SIGNAL_TERM = 15;

std::string commandLine(const std::string& tool, const std::vector<std::string>& arguments) {
  std::string line = tool;
  for (const std::string& argument : arguments) line += " " + argument;
  return line;
}

}  // namespace

bool SimProcess::acquireWindowInstance(Task onReopen) {
  if (windowSeatTaken_) {
    journal_.note("the running program is told that it was opened again");
    return false;
  }
  onReopen_ = std::move(onReopen);
  return true;
}

void SimProcess::reopen() {
  if (onReopen_) timeline_.addMain(0, 0, onReopen_);
}

void SimProcess::endWithin(std::optional<Seconds> uptime) {
  timeline_.cancelWorld(lastResort_);
  lastResort_ = uptime ? timeline_.addWorld(*uptime, [this] { kill(); }) : 0;
  lastResortAt_ = timeline_.uptime() + uptime.value_or(0);
}

std::optional<Seconds> SimProcess::timeLeft() const {
  return lastResort_ == 0 ? std::nullopt : std::optional(lastResortAt_ - timeline_.uptime());
}

void SimProcess::processEnded() {
  endWithin({});
  terminationHandler_ = onReopen_ = nullptr;
}

void SimProcess::terminate() {
  if (!timeline_.processRuns()) return;
  journal_.note("termination signal");
  if (terminationHandler_) {
    timeline_.addMain(0, 0, terminationHandler_);
  } else {
    timeline_.killProcess(KILLED_BY_SIGNAL + SIGNAL_TERM);
  }
}

void SimProcess::kill() {
  if (!timeline_.processRuns()) return;
  journal_.note("kill signal");
  timeline_.killProcess(KILLED_BY_SIGNAL + SIGNAL_KILL);
}

void SimOutput::put(const char* stream, std::string_view line, std::vector<std::string>& to) {
  journal_.note(stream, line);
  to.emplace_back(line);
  if (!path_.empty()) files_.put(path_, files_.content(path_).append(line).append("\n"));
}

std::int32_t SimChildProcesses::run(const std::string& tool, const std::vector<std::string>& arguments) {
  const auto found = tools_.find(tool);
  const std::int32_t status = found == tools_.end() ? -1 : found->second(arguments);
  journal_.note("run ", commandLine(tool, arguments), " = ", status);
  return status;
}

std::string SimChildProcesses::toolPath(const std::string& tool) const {
  const auto found = standIns_.find(tool);
  return found == standIns_.end() ? tool : found->second;
}

bool SimChildProcesses::start(const std::string& tool, const std::vector<std::string>& arguments) {
  journal_.note("left running: ", commandLine(tool, arguments), startsFail_ ? " (failed)" : "");
  return !startsFail_;
}

void SimChildProcesses::install(const std::string& tool, Tool behaviour) {
  if (behaviour) {
    tools_[tool] = std::move(behaviour);
  } else {
    tools_.erase(tool);
  }
}

}  // namespace dormel
