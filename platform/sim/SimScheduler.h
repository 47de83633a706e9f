// The per-user job scheduler of a simulated machine, behind the three calls of its tool: "bootstrap", "bootout" and
// "print". A loaded job starts at its hour (caught up after sleep), when it is loaded, and one second after it ended
// with anything but 0; never after it ended with 0.
//
// The machine runs one process at a time: a job that is due while another program runs is not started.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/sim/SimFiles.h"
#include "platform/sim/SimProcess.h"
#include "platform/sim/SimTime.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimScheduler {
 public:
  /// Starts the program with those arguments, its output going to the log as well.
  using Starter = std::function<void(const std::string& executable, const std::vector<std::string>& arguments,
                                     const std::string& logPath)>;

  SimScheduler(SimTimeline& timeline, const SimCalendar& calendar, SimFiles& files, SimProcess& process,
               Starter starter)
      : timeline_(timeline), calendar_(calendar), files_(files), process_(process), starter_(std::move(starter)) {}

  /// What the tool answers: 0, 3 (no such job), 5 (I/O error), 37 (already loaded), 113 (could not find it), 125
  /// (switched off).
  std::int32_t run(const std::vector<std::string>& arguments);

  /// The user switched the program off: its jobs can no longer be loaded.
  void setSwitchedOff(bool off) { switchedOff_ = off; }
  /// The tool answers `status` to every bootstrap from now on; nothing ends that.
  void setBootstrapFailure(std::optional<std::int32_t> status) { bootstrapFailure_ = status; }
  [[nodiscard]] bool isLoaded(const std::string& label) const { return jobs_.contains(label); }

  /// Somebody logs in: all jobs found in the launch-agents folder are loaded.
  void logIn();
  /// The wall clock moved, or the machine slept: start hours may have been missed, and lie elsewhere now.
  void clockChanged();
  void processEnded(int status);

 private:
  struct Job {
    std::string executable;
    std::vector<std::string> arguments;
    std::string logPath;
    int hour = -1;
    int minute = 0;
    bool runAtLoad = false;
    bool keepAlive = false;
    Date next{};
    std::uint64_t alarm = 0;
  };

  std::int32_t bootstrap(const std::string& plistPath);
  std::int32_t bootout(const std::string& label);
  void start(const std::string& label);
  void arm(const std::string& label);

  SimTimeline& timeline_;
  const SimCalendar& calendar_;
  SimFiles& files_;
  SimProcess& process_;
  Starter starter_;
  std::map<std::string, Job> jobs_;
  std::string running_;  // the label of the job whose process runs
  bool switchedOff_ = false;
  std::optional<std::int32_t> bootstrapFailure_;
};

}  // namespace dormel
