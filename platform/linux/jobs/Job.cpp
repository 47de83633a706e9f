#include "platform/linux/jobs/Job.h"

#include <algorithm>
#include <cstdint>

#include "platform/PropertyList.h"
#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::jobs {
namespace {

/// The value of a key that may be absent, but not of another type.
template <typename T>
const T* entry(const PropertyListDictionary& dictionary, std::string_view key) {
  const auto found = dictionary.find(key);
  if (found == dictionary.end()) return nullptr;
  const T* value = found->second.as<T>();
  if (value == nullptr) throw JobError{"wrong type of value: " + std::string(key)};
  return value;
}

int figure(const PropertyListDictionary& interval, std::string_view key, int limit) {
  const auto* number = entry<std::int64_t>(interval, key);
  if (number == nullptr || *number < 0 || *number >= limit) {
    throw JobError{"StartCalendarInterval needs a valid " + std::string(key)};
  }
  return static_cast<int>(*number);
}

std::optional<StartTime> startTime(const PropertyListDictionary& root) {
  const auto* interval = entry<PropertyListDictionary>(root, "StartCalendarInterval");
  if (interval == nullptr) return {};
  for (const auto& [key, value] : *interval) {
    if (key != "Hour" && key != "Minute") throw JobError{"StartCalendarInterval: cannot honour " + key};
  }
  return StartTime{figure(*interval, "Hour", 24), figure(*interval, "Minute", 60)};
}

Restart restart(const PropertyListDictionary& root) {
  const auto found = root.find("KeepAlive");
  if (found == root.end()) return Restart::never;
  if (const auto* flag = found->second.as<bool>()) return *flag ? Restart::always : Restart::never;
  const auto* conditions = found->second.as<PropertyListDictionary>();
  if (conditions != nullptr && conditions->size() == 1 && conditions->begin()->first == "SuccessfulExit") {
    const auto* flag = conditions->begin()->second.as<bool>();
    if (flag != nullptr && !*flag) return Restart::unlessSuccessful;
  }
  throw JobError{"KeepAlive: cannot honour these conditions"};
}

/// Paths also stand in line-based files of other programs, which take no line end and drop spaces at the end.
bool isPath(std::string_view text) {
  return text.starts_with('/') && !text.ends_with(' ') && !text.ends_with('\\') &&
         std::none_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; });
}

std::string logPath(const PropertyListDictionary& root, std::string_view key) {
  const auto* path = entry<std::string>(root, key);
  if (path == nullptr) return {};
  if (!isPath(*path)) throw JobError{std::string(key) + " is not a path that can be used"};
  return *path;
}

Job job(const PropertyListDictionary& root, const std::string& path) {
  Job job;
  job.propertyList = path;
  if (const auto* label = entry<std::string>(root, "Label")) job.label = *label;
  if (!isJobLabel(job.label)) throw JobError{"no valid Label"};
  if (const auto* arguments = entry<PropertyListArray>(root, "ProgramArguments")) {
    for (const PropertyListValue& argument : *arguments) {
      const auto* text = argument.as<std::string>();
      if (text == nullptr) throw JobError{"ProgramArguments holds something that is not text"};
      job.arguments.push_back(*text);
    }
  }
  if (job.arguments.empty() || !isPath(job.program())) throw JobError{"ProgramArguments names no program"};
  job.start = startTime(root);
  if (const auto* flag = entry<bool>(root, "RunAtLoad")) job.runAtLoad = *flag;
  job.restart = restart(root);
  job.standardOutput = logPath(root, "StandardOutPath");
  job.standardError = logPath(root, "StandardErrorPath");
  return job;
}

}  // namespace

std::string Job::displayName() const {
  const auto end = program().find(".app/Contents/");
  if (end == std::string::npos) return label;
  const auto slash = program().rfind('/', end);
  return program().substr(slash + 1, end - slash - 1);
}

bool isJobLabel(std::string_view label) {
  const auto allowed = [](unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
           c == '-';
  };
  return !label.empty() && label.size() <= 200 && label.front() != '.' && label.front() != '-' &&
         std::all_of(label.begin(), label.end(), allowed);
}

std::variant<Job, JobError> parseJob(std::string_view xml, const std::string& path) {
  const auto root = readXmlPropertyList(xml);
  const auto* dictionary = root ? root->as<PropertyListDictionary>() : nullptr;
  if (dictionary == nullptr) return JobError{"not a property list: " + path};
  if (!isPath(path)) return JobError{"not a path that can be used: " + path};
  try {
    return job(*dictionary, path);
  } catch (const JobError& error) {
    return error;
  }
}

std::variant<Job, JobError> readJob(const std::string& path) {
  const auto xml = freedesktop::readTextFile(path);
  if (!xml) return JobError{"cannot read " + path};
  return parseJob(*xml, path);
}

}  // namespace dormel::jobs
