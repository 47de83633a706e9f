// The door to the operating system: one reference to each service, and the one set that is in force.
//
// Logic reaches every service through `platform()`. The program installs the real desktop's set at start-up; a
// test installs a simulated machine's for a scope. Installing is main-thread work and happens before other
// threads exist; `platform()` itself may be called from any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace dormel {

class Accessibility;
class Alerts;
class Application;
class Bundle;
class Calendar;
class ChildProcesses;
class Clock;
class DefaultsStore;
class Dragging;
class EventTaps;
class Files;
class HardwareKeys;
class InputIdle;
class KeyboardLayout;
class LoginItems;
class MainMenu;
class MainWindows;
class Notices;
class Process;
class Queues;
class RunLoop;
class RunningApplications;
class Screens;
class SecureRandom;
class Speech;
class StandardOutput;
class Texts;
class Updater;
class WindowList;
class WindowServer;
class Wording;
class Workspace;

struct Platform {
  Clock& clock;
  Calendar& calendar;
  RunLoop& runLoop;
  Queues& queues;
  DefaultsStore& defaults;
  Files& files;
  Process& process;
  ChildProcesses& childProcesses;
  StandardOutput& output;
  SecureRandom& random;
  Accessibility& accessibility;
  EventTaps& eventTaps;
  HardwareKeys& hardwareKeys;
  InputIdle& inputIdle;
  KeyboardLayout& keyboardLayout;
  Screens& screens;
  WindowServer& windows;
  Application& application;
  Notices& notices;
  Bundle& bundle;
  Alerts& alerts;
  MainWindows& mainWindows;
  MainMenu& mainMenu;
  Workspace& workspace;
  LoginItems& loginItems;
  Updater& updater;
  RunningApplications& runningApplications;
  WindowList& windowList;
  Dragging& dragging;
  Wording& wording;
  Texts& texts;
  Speech& speech;
};

/// The set in force. Calling it with none installed is a programming error and ends the program.
[[nodiscard]] Platform& platform();

/// Tells the set in force from every other one of this program's life, one at the same address included: what is made
/// once per set (a shared log) learns from it that it belongs to another. Any thread.
[[nodiscard]] std::uint64_t platformGeneration();

/// Has `task` run when the set in force is about to go: what is made once per set goes with it. Main thread only.
void atPlatformEnd(std::function<void()> task);

/// Puts `services` in force while it lives, then what was in force before.
class PlatformScope {
 public:
  explicit PlatformScope(Platform& services);
  PlatformScope(const PlatformScope&) = delete;
  PlatformScope& operator=(const PlatformScope&) = delete;
  ~PlatformScope();

 private:
  friend void atPlatformEnd(std::function<void()> task);

  Platform* previous_;
  std::uint64_t previousGeneration_;
  PlatformScope* previousScope_;
  std::vector<std::function<void()>> endings_;
};

}  // namespace dormel
