#include "platform/sim/SimScheduler.h"

#include <utility>

#include "platform/PropertyList.h"

namespace dormel {
namespace {

constexpr std::int32_t NO_SUCH_JOB = 3;
constexpr std::int32_t IO_ERROR = 5;
constexpr std::int32_t ALREADY_LOADED = 37;
constexpr std::int32_t NOT_FOUND = 113;
constexpr std::int32_t SWITCHED_OFF = 125;
constexpr std::int32_t BAD_USAGE = 64;
constexpr Seconds RESTART_DELAY = 1.0;

template <typename T>
const T* valueOf(const PropertyListDictionary& dictionary, std::string_view key) {
  const auto found = dictionary.find(key);
  return found == dictionary.end() ? nullptr : found->second.as<T>();
}

}  // namespace

std::int32_t SimScheduler::run(const std::vector<std::string>& arguments) {
  const std::string domain = "gui/" + std::to_string(process_.userId());
  if (arguments.size() == 3 && arguments[0] == "bootstrap" && arguments[1] == domain) return bootstrap(arguments[2]);
  if (arguments.size() != 2 || !arguments[1].starts_with(domain + "/")) return BAD_USAGE;
  const std::string label = arguments[1].substr(domain.size() + 1);
  if (arguments[0] == "bootout") return bootout(label);
  if (arguments[0] == "print") return jobs_.contains(label) ? 0 : NOT_FOUND;
  return BAD_USAGE;
}

std::int32_t SimScheduler::bootstrap(const std::string& plistPath) {
  if (bootstrapFailure_) return *bootstrapFailure_;
  if (switchedOff_) return SWITCHED_OFF;
  const auto list = readXmlPropertyList(files_.read(plistPath).value_or(""));
  const auto* root = list ? list->as<PropertyListDictionary>() : nullptr;
  const auto* label = root == nullptr ? nullptr : valueOf<std::string>(*root, "Label");
  const auto* program = root == nullptr ? nullptr : valueOf<PropertyListArray>(*root, "ProgramArguments");
  if (label == nullptr || program == nullptr || program->empty()) return IO_ERROR;
  if (jobs_.contains(*label)) return ALREADY_LOADED;

  Job job;
  if (const auto* executable = program->front().as<std::string>()) job.executable = *executable;
  for (auto argument = program->begin() + 1; argument != program->end(); ++argument) {
    if (const auto* text = argument->as<std::string>()) job.arguments.push_back(*text);
  }
  if (const auto* path = valueOf<std::string>(*root, "StandardOutPath")) job.logPath = *path;
  if (const auto* at = valueOf<PropertyListDictionary>(*root, "StartCalendarInterval")) {
    if (const auto* hour = valueOf<std::int64_t>(*at, "Hour")) job.hour = static_cast<int>(*hour);
    if (const auto* minute = valueOf<std::int64_t>(*at, "Minute")) job.minute = static_cast<int>(*minute);
  }
  if (const auto* atLoad = valueOf<bool>(*root, "RunAtLoad")) job.runAtLoad = *atLoad;
  if (const auto* alive = valueOf<PropertyListDictionary>(*root, "KeepAlive")) {
    const auto* success = valueOf<bool>(*alive, "SuccessfulExit");
    job.keepAlive = success != nullptr && !*success;
  }
  const bool runAtLoad = job.runAtLoad;
  const std::string name = *label;
  jobs_[name] = std::move(job);
  arm(name);
  if (runAtLoad) timeline_.addWorld(0, [this, name] { start(name); });
  return 0;
}

std::int32_t SimScheduler::bootout(const std::string& label) {
  const auto job = jobs_.find(label);
  if (job == jobs_.end()) return NO_SUCH_JOB;
  timeline_.cancelWorld(job->second.alarm);
  jobs_.erase(job);
  if (running_ == label) timeline_.addWorld(0, [this] { process_.terminate(); });
  return 0;
}

void SimScheduler::logIn() {
  const std::string folder = files_.homeDirectory() + "/Library/LaunchAgents";
  for (const std::string& name : files_.names(folder)) bootstrap(std::string(folder).append("/").append(name));
}

void SimScheduler::clockChanged() {
  for (auto& [label, job] : jobs_) {
    if (job.hour >= 0 && job.next <= timeline_.now()) timeline_.addWorld(0, [this, name = label] { start(name); });
    arm(label);
  }
}

void SimScheduler::processEnded(int status) {
  const auto job = jobs_.find(std::exchange(running_, {}));
  if (status == 0 || job == jobs_.end() || !job->second.keepAlive) return;
  timeline_.addWorld(RESTART_DELAY, [this, label = job->first] { start(label); });
}

void SimScheduler::start(const std::string& label) {
  const auto job = jobs_.find(label);
  if (job == jobs_.end() || timeline_.processRuns()) return;
  running_ = label;
  const Job started = job->second;  // it may be gone before the program has started
  starter_(started.executable, started.arguments, started.logPath);
}

void SimScheduler::arm(const std::string& label) {
  Job& job = jobs_.at(label);
  timeline_.cancelWorld(std::exchange(job.alarm, 0));
  if (job.hour < 0) return;
  job.next = calendar_.next(job.hour, job.minute, timeline_.now());
  const Seconds delay = static_cast<Seconds>((job.next - timeline_.now()).count()) / 1e6;
  job.alarm = timeline_.addWorld(delay, [this, label] {
    arm(label);
    start(label);
  });
}

}  // namespace dormel
