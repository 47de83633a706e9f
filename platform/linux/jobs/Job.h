// A job as its property list describes it: the one description that every scheduler derives its own from.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace dormel::jobs {

struct StartTime {
  int hour = 0;    ///< 0...23, local time
  int minute = 0;  ///< 0...59
  friend bool operator==(const StartTime&, const StartTime&) = default;
};

/// What an end of the job's process leads to.
enum class Restart {
  never,
  unlessSuccessful,  ///< again after anything but exit status 0
  always,
};

struct Job {
  std::string propertyList;            ///< path of the file it was read from
  std::string label;                   ///< letters, digits, ".", "_" and "-" only: it names files and units
  std::vector<std::string> arguments;  ///< the program (absolute) and its arguments
  std::optional<StartTime> start;      ///< starts once a day
  bool runAtLoad = false;              ///< starts when it is loaded and at every login
  Restart restart = Restart::never;
  std::string standardOutput;  ///< absolute path of the file that output is appended to; empty for none
  std::string standardError;

  [[nodiscard]] const std::string& program() const { return arguments.front(); }
  /// The name of the application bundle that holds the program, else the label.
  [[nodiscard]] std::string displayName() const;

  friend bool operator==(const Job&, const Job&) = default;
};

/// Why a property list describes no job, as one line.
struct JobError {
  std::string message;
};

/// The job in the file at `path` (absolute). Keys that we do not know are passed over; a known key with a value
/// that we cannot honour is an error, never a guess.
[[nodiscard]] std::variant<Job, JobError> readJob(const std::string& path);
[[nodiscard]] std::variant<Job, JobError> parseJob(std::string_view xml, const std::string& path);

/// Whether `label` can be a job's label.
[[nodiscard]] bool isJobLabel(std::string_view label);

}  // namespace dormel::jobs
