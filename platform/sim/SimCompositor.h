// The Wayland side of a simulated desktop: a compositor whose session lock outlives its client and whose keyboard focus
// others may take, and what there is beside the process to see to the lock: its mark, and the processes that watch.
//
// Deciding is left to the code of the real family (platform/common/lock/); here are the parties that it deals with. On
// the machine of an X server, or of GNOME (SimShell), none of this does anything.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>

#include "platform/common/lock/AbandonedLockPolicy.h"
#include "platform/common/lock/LockMark.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimKeyboard.h"
#include "platform/sim/SimTimeline.h"
#include "platform/sim/SimWindows.h"

namespace dormel {

class SimCompositor {
 public:
  enum class Desktop { x11, sessionLock, overlay, shell };

  SimCompositor(SimTimeline& timeline, SimJournal& journal, SimWindowServer& windows, SimKeyboard& keyboard,
                const Clock& clock);
  SimCompositor(const SimCompositor&) = delete;
  SimCompositor& operator=(const SimCompositor&) = delete;
  ~SimCompositor();

  /// Before the first process starts.
  void setDesktop(Desktop desktop) { desktop_ = desktop; }
  [[nodiscard]] Desktop desktop() const { return desktop_; }

  // The process.
  void processStarts();
  /// It ends in an orderly way, and says so to the compositor.
  void processExits();
  void processEnded();
  void setLockdown(bool on);
  void setKeysWanted(bool wanted);
  void panelsChanged();

  // The world.
  /// Somebody else gets the keyboard, and gives it back when asked.
  void stealFocus();
  /// Somebody else has the keyboard and keeps it.
  void keepFocus(bool keeps);
  /// Another program's session lock is up; nothing where one of ours is.
  void lockForAnother(bool on);
  /// It ends with all its clients' connections, and another one comes up in its place.
  void restart();
  /// The processes that watch over ours die.
  void killWatchers() { watchers_.clear(); }
  void setMarkWritable(bool writable) { isMarkWritable_ = writable; }

  // What can be seen.
  [[nodiscard]] bool isLockedByUs() const { return holder_ == Holder::process; }
  [[nodiscard]] bool isLockedByAnother() const { return holder_ == Holder::another; }
  /// A lock of ours is up whose owner has died.
  [[nodiscard]] bool isOwnerless() const { return isLockedByUs() && !isRunning(owner_); }

 private:
  enum class Holder { nobody, process, another };
  class Client;
  struct Watcher {
    bool isMarked;
    int compositor;
    std::optional<AbandonedLockPolicy> watch;  ///< from the owner's death on
  };

  [[nodiscard]] bool isInForce() const { return desktop_ == Desktop::sessionLock || desktop_ == Desktop::overlay; }
  [[nodiscard]] bool isRunning(int process) const { return timeline_.processRuns() && process == launches_; }
  [[nodiscard]] ProcessMark compositorMark() const { return {100, static_cast<unsigned long long>(generation_)}; }
  [[nodiscard]] bool isAbandoned() const;
  void asked(int process);
  void unlock();
  [[nodiscard]] LockRelease release();
  void look(int process);
  [[nodiscard]] bool isFocusHeld() const { return !isFocusStolen_ && !isFocusKept_ && !isLockedByAnother(); }
  void focusChanged();
  void giveFocusBack();

  SimTimeline& timeline_;
  SimJournal& journal_;
  SimWindowServer& windows_;
  SimKeyboard& keyboard_;
  const Clock& clock_;
  Desktop desktop_ = Desktop::x11;
  int launches_ = 0;
  int generation_ = 1;
  Seconds diedAt_ = 0;
  std::unique_ptr<Client> client_;  // of the process that runs
  std::optional<LockMark> mark_;
  bool isMarkWritable_ = true;
  std::map<int, Watcher> watchers_;  // by the number of the process that they watch over
  Holder holder_ = Holder::nobody;
  int owner_ = 0;            // the process's number, while it is ours
  bool isOwnerGone_ = true;  // as far as the compositor has noticed
  bool isFocusStolen_ = false;
  bool isFocusKept_ = false;
};

}  // namespace dormel
