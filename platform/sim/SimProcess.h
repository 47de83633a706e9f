// The process under test, its standard streams and its children, as the simulated machine has them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Process.h"
#include "platform/sim/SimFiles.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimProcess : public Process {
 public:
  SimProcess(SimTimeline& timeline, SimJournal& journal) : timeline_(timeline), journal_(journal) {}

  /// Unwinds to the machine, which lets the serial queues run dry and then runs nothing of this process any more.
  using Process::exit;
  [[noreturn]] void exit(const ExitStatus& status) override {
    if (restoreAtExit_) restoreAtExit_(status() != 0);
    timeline_.exit(status);
  }
  void endWithin(std::optional<Seconds> uptime) override;
  [[nodiscard]] int processId() const override { return 4711; }
  [[nodiscard]] unsigned userId() const override { return 1000; }
  void onTerminationSignal(Task handler) override { terminationHandler_ = std::move(handler); }
  bool acquireScheduledInstance() override { return !sessionTaken_; }
  bool acquireWindowInstance(Task onReopen) override;

  // The world's side.
  /// The termination signal: the handler's turn comes on the main thread; without one the process dies of it.
  void terminate();
  /// The signal that no process survives.
  void kill();
  /// What the process still does when it ends by itself, told whether it is to be started again.
  void setLastWill(std::function<void(bool comesBack)> restoreAtExit) { restoreAtExit_ = std::move(restoreAtExit); }
  /// Until the kernel kills it.
  [[nodiscard]] std::optional<Seconds> timeLeft() const;
  /// Another process has the instance lock of scheduled runs.
  void setSessionTaken(bool taken) { sessionTaken_ = taken; }
  /// Another process has the instance lock of the opened program.
  void setWindowSeatTaken(bool taken) { windowSeatTaken_ = taken; }
  /// The user opens the program a second time: the one that runs is told.
  void reopen();
  void processEnded();

 private:
  SimTimeline& timeline_;
  SimJournal& journal_;
  std::uint64_t lastResort_ = 0;
  Seconds lastResortAt_ = 0;
  std::function<void(bool)> restoreAtExit_;
  Task terminationHandler_;
  Task onReopen_;
  bool sessionTaken_ = false;
  bool windowSeatTaken_ = false;
};

class SimOutput : public StandardOutput {
 public:
  SimOutput(SimJournal& journal, SimFiles& files) : journal_(journal), files_(files) {}

  void print(std::string_view line) override { put("out: ", line, lines_); }
  void printError(std::string_view line) override { put("err: ", line, errors_); }
  [[nodiscard]] std::optional<Terminal> terminal() const override { return terminal_; }
  void setTerminal(std::optional<Terminal> terminal) { terminal_ = terminal; }

  [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }
  [[nodiscard]] const std::vector<std::string>& errors() const { return errors_; }
  /// Both streams go to the end of this file too, as a scheduler arranges it; empty for none.
  void redirect(std::string path) { path_ = std::move(path); }

 private:
  void put(const char* stream, std::string_view line, std::vector<std::string>& to);

  SimJournal& journal_;
  SimFiles& files_;
  std::string path_;
  std::vector<std::string> lines_;
  std::vector<std::string> errors_;
  std::optional<Terminal> terminal_;
};

class SimChildProcesses : public ChildProcesses {
 public:
  /// What a tool does: its exit status from its arguments.
  using Tool = std::function<std::int32_t(const std::vector<std::string>& arguments)>;

  explicit SimChildProcesses(SimJournal& journal) : journal_(journal) {}

  std::int32_t run(const std::string& tool, const std::vector<std::string>& arguments) override;
  [[nodiscard]] std::string toolPath(const std::string& tool) const override;
  bool start(const std::string& tool, const std::vector<std::string>& arguments) override;

  /// Puts a tool on the machine; none takes it away, and it can no longer be started.
  void install(const std::string& tool, Tool behaviour);
  /// Another file stands for the tool.
  void standIn(const std::string& tool, const std::string& path) { standIns_[tool] = path; }
  /// While true, nothing can be started on its own.
  void setStartsFail(bool fail) { startsFail_ = fail; }

 private:
  SimJournal& journal_;
  std::map<std::string, Tool> tools_;
  std::map<std::string, std::string> standIns_;
  bool startsFail_ = false;
};

}  // namespace dormel
