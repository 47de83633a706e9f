// Keeps one job where no service manager does: starts it at its start time, at load and at login, and again when
// it ends otherwise than it should. One process per job, one thread, asleep in one poll until something happens.
//
// It answers on the socket of its place. It ends when the job is unloaded. When it is killed, the job's process
// goes on, and the next supervisor looks after it.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/jobs/Job.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/supervisor/JobProcess.h"
#include "platform/linux/supervisor/StartTimer.h"
#include "platform/linux/supervisor/SupervisorPlace.h"
#include "platform/linux/supervisor/Wire.h"

namespace dormel::jobs::supervisor {

class Supervisor {
 public:
  /// `place` is claimed already.
  Supervisor(Job job, SupervisorPlace& place);
  Supervisor(const Supervisor&) = delete;
  Supervisor& operator=(const Supervisor&) = delete;

  /// Takes over what an earlier supervisor left running, and loads the job.
  void begin();
  /// Supervises until the job is unloaded and has ended.
  void run();

 private:
  void load(const Words& sessionChanges);
  void startJob();
  void jobEnded(const Ending& ending);
  void pauseBeforeRestart();
  void answerCaller();
  [[nodiscard]] Words answer(const Words& question, pid_t caller);
  [[nodiscard]] Words report() const;
  void unload(pid_t caller);
  void watchPlace();
  void placeVanished();

  Job job_;
  SupervisorPlace& place_;
  JobProcess process_;
  StartTimer startTimer_;
  posix::FileDescriptor restartTimer_;
  posix::FileDescriptor placeWatch_;
  bool pausing_ = false;
  bool loaded_ = true;
  std::string lastEnding_;
};

}  // namespace dormel::jobs::supervisor
