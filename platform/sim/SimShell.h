// The GNOME side of a simulated desktop: a shell whose extension covers the monitors and takes the keys for the
// process, goes on with both when it dies, and keeps them on the disk for its own next start.
//
// What is held is decided by the code of the real family (platform/common/lock/HoldPlan.h); here are the extension, as
// platform/linux/gnome/extension/ does it, and the connection to it. On any other desktop none of this does anything.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/common/lock/HoldPlan.h"
#include "platform/sim/SimDesktop.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimKeyboard.h"
#include "platform/sim/SimProcess.h"
#include "platform/sim/SimTimeline.h"
#include "platform/sim/SimWindows.h"

namespace dormel {

class SimShell {
 public:
  SimShell(SimTimeline& timeline, SimJournal& journal, SimWindowServer& windows, SimKeyboard& keyboard,
           SimAccessibility& accessibility, SimProcess& process, SimOutput& output);
  SimShell(const SimShell&) = delete;
  SimShell& operator=(const SimShell&) = delete;
  ~SimShell();

  /// Before the first process starts.
  void setInForce() { isInForce_ = true; }
  [[nodiscard]] bool isInForce() const { return isInForce_; }

  // The process.
  /// `isScheduled`: it was started by the scheduler, and does not wait for an extension that went.
  void processStarts(bool isScheduled);
  /// It ends in an orderly way; `comesBack`: to be started again.
  void processExits(bool comesBack);
  void processEnded();
  void setLockdown(bool on);
  void setKeysWanted(bool wanted);
  void panelsChanged();

  // The world.
  /// The shell disables the extension, or enables it.
  void setEnabled(bool on);
  /// Its socket takes nobody new, or does again.
  void setListening(bool listens) { listens_ = listens; }
  /// The desktop's own lock screen.
  void setLockScreen(bool up);
  /// Another modal of the shell has the keys.
  void setKeysElsewhere(bool elsewhere);
  /// One takes them and does not ask again.
  void stealKeys();
  /// It crashes, and the session with it; the user logs in anew.
  void restart();

  // What can be seen.
  /// A lock's cover, be it behind the lock screen.
  [[nodiscard]] bool isLocking() const { return hold_ && hold_->cover && hold_->absence > 0; }
  [[nodiscard]] bool hasKeys() const { return hold_ && hold_->keys && !isLockScreen_ && !areKeysElsewhere_; }
  /// Something is held whose program is not connected.
  [[nodiscard]] bool isOwnerless() const { return hold_ && !(isConnected() && holder_ == launches_); }
  /// The process that runs has no way to it.
  [[nodiscard]] bool isOutOfReach() const { return !isConnected(); }

 private:
  struct Client;

  [[nodiscard]] bool isConnected() const;
  // The extension.
  void held(int process, const ShellHold& hold);
  void left(int process);
  void takeUp();
  void look();
  void end(bool isOver);
  void changed();
  // The process's side.
  bool connect();
  void disconnect();
  void comeBack();
  void lookForIt();
  void update();
  void lookAgain(int process);

  SimTimeline& timeline_;
  SimJournal& journal_;
  SimWindowServer& windows_;
  SimKeyboard& keyboard_;
  SimAccessibility& accessibility_;
  SimProcess& process_;
  SimOutput& output_;
  bool isInForce_ = false;
  bool isEnabled_ = true;
  bool listens_ = true;
  bool isLockScreen_ = false;
  bool areKeysElsewhere_ = false;
  int launches_ = 0;
  std::unique_ptr<Client> client_;  // of the process that runs
  std::optional<ShellHold> hold_;
  int holder_ = 0;                 // the process that said it; 0 for an earlier start's
  std::optional<Seconds> leftAt_;  // when that went
  std::optional<ShellHold> kept_;  // on the disk
};

}  // namespace dormel
