#include "platform/sim/SimMachine.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace dormel {
namespace {

Date utc(const std::string& moment) {
  SimCalendar calendar;
  calendar.setOffset(SimCalendar::Offset(0));
  return calendar.at(moment);
}

}  // namespace

SimMachine::SimMachine(const Options& options)
    : timeline(utc(options.start)),
      journal([this] { return timeOfDay(); }),
      clock(timeline),
      runLoop(timeline),
      queues(timeline),
      files(journal),
      output(journal, files),
      defaults(journal, output),
      process(timeline, journal),
      childProcesses(journal),
      random(options.seed),
      notices(timeline),
      screens(journal, notices),
      windows(timeline, journal, screens),
      keyboard(timeline, journal, windows),
      application(timeline, journal, process),
      alerts(timeline, journal),
      mainWindows(timeline, journal, windows),
      mainMenu(timeline, journal, mainWindows),
      workspace(journal, files),
      loginItems(journal),
      updater(journal),
      others(timeline),
      dragging(timeline, journal),
      speech(timeline, journal),
      scheduler(
          timeline, calendar, files, process,
          [this](const std::string& executable, const std::vector<std::string>& arguments, const std::string& logPath) {
            if (const std::size_t end = executable.find("/Contents/"); end != std::string::npos) {
              bundle.setPath(executable.substr(0, end));
            }
            launch(arguments, logPath);
          }),
      compositor(timeline, journal, windows, keyboard, clock),
      shell(timeline, journal, windows, keyboard, accessibility, process, output),
      services_(services()) {
  childProcesses.install("/bin/launchctl",
                         [this](const std::vector<std::string>& arguments) { return scheduler.run(arguments); });
  childProcesses.install("/usr/bin/xattr", [](const std::vector<std::string>&) { return 0; });
  screens.setOnChange([this] { windows.screensChanged(); });
  windows.setOnPanelsChanged([this] {
    compositor.panelsChanged();
    shell.panelsChanged();
  });
  keyboard.setOnWanted([this](bool isWanted) {
    compositor.setKeysWanted(isWanted);
    shell.setKeysWanted(isWanted);
  });
  application.setOnOptions([this](bool isLockdown) {
    compositor.setLockdown(isLockdown);
    shell.setLockdown(isLockdown);
  });
  process.setLastWill([this](bool comesBack) {
    compositor.processExits();
    shell.processExits(comesBack);
  });
  timeline.setProcessHooks([this](bool leaving) { journal.setMuted(leaving); },
                           [this](int status) { processEnded(status); });
  if (!options.processRuns) timeline.clear();
  journal.setEnabled(false);
  screens.plug("DP-1", {0, 0, 1920, 1080});
  timeline.settle();
  journal.setEnabled(true);
  scope_.emplace(services_);
}

SimMachine::~SimMachine() {
  journal.setMuted(true);
  launched_.reset();
  alerts.processEnded();
  windows.setOnPanelsChanged({});
  keyboard.setOnWanted({});
  timeline.clear();
}

Platform SimMachine::services() {
  return {clock,      calendar,    runLoop,       queues,   defaults, files,       process,  childProcesses,
          output,     random,      accessibility, keyboard, keyboard, keyboard,    layout,   screens,
          windows,    application, notices,       bundle,   alerts,   mainWindows, mainMenu, workspace,
          loginItems, updater,     others,        others,   dragging, wording,     texts,    speech};
}

void SimMachine::setWallClock(const std::string& localMoment) {
  jumpWallClock(static_cast<Seconds>((calendar.at(localMoment) - timeline.now()).count()) / 1e6);
}

void SimMachine::jumpWallClock(Seconds by) {
  timeline.jumpWallClock(by);
  scheduler.clockChanged();
}

void SimMachine::sleep(Seconds duration) {
  notices.post(Notice::willSleep);
  settle();
  journal.note("sleeps");
  timeline.jumpWallClock(duration);
  journal.note("wakes");
  notices.post(Notice::didWake);
  scheduler.clockChanged();
  settle();
}

void SimMachine::launch(const std::vector<std::string>& arguments, const std::string& logPath) {
  if (timeline.processRuns() || !program_) return;
  std::string line = "start";
  for (const std::string& argument : arguments) line += " " + argument;
  journal.note(line);
  output.redirect(logPath);
  timeline.startProcess();
  scope_.emplace(services_);  // a new process shares nothing with the last one
  compositor.processStarts();
  shell.processStarts(std::find(arguments.begin(), arguments.end(), "--scheduled") != arguments.end());
  timeline.perform([&] { launched_ = program_(arguments); });
}

std::optional<int> SimMachine::exitStatus() const {
  return timeline.processRuns() || endings_.empty() ? std::nullopt : std::optional(endings_.back().status);
}

std::string SimMachine::timeOfDay() const {
  const LocalTime t = calendar.localTime(timeline.now());
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d", t.hour, t.minute, t.second, t.millisecond);
  return text.data();
}

void SimMachine::processEnded(int status) {
  journal.setMuted(false);
  journal.note("exit ", status);
  endings_.push_back({status, timeline.now()});
  compositor.processEnded();
  shell.processEnded();
  windows.processEnded();
  keyboard.processEnded();
  journal.setMuted(true);
  launched_.reset();
  notices.processEnded();
  application.processEnded();
  alerts.processEnded();
  mainWindows.processEnded();
  mainMenu.processEnded();
  dragging.processEnded();
  process.processEnded();
  defaults.processEnded();
  output.redirect({});
  journal.setMuted(false);
  scheduler.processEnded(status);
}

}  // namespace dormel
