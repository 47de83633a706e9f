// Watches a machine from outside and tells the first rule that is broken.
//
// It sees what a person with all instruments could see: the windows and what they show, the keyboard and its hardware,
// standard output, the files, how processes end. Of the program's inside it knows one number, the overlay's generation.
// What it holds the program to is worked out here, with figures of its own.
#pragma once

#include <array>
#include <deque>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "overlay/BlockerOverlayView.h"
#include "platform/sim/SimMachine.h"
#include "tools/nights/Rules.h"

namespace dormel::nights {

struct Fault {
  Rule rule = Rule::sound;
  std::string what;  ///< what was seen, led by the local time
};

class NightWatch {
 public:
  using Epoch = std::function<std::optional<int>()>;

  /// Watches `machine` from now on; `epoch` answers the overlay's generation while there is a session.
  NightWatch(SimMachine& machine, Epoch epoch);
  NightWatch(const NightWatch&) = delete;
  NightWatch& operator=(const NightWatch&) = delete;
  ~NightWatch();

  [[nodiscard]] const std::optional<Fault>& fault() const { return fault_; }

  /// Looks at everything now.
  void look();
  /// Holds what is told of the nights to what was seen of them.
  void checkHistory();

  // What the world does, told when it does it.
  /// `byScheduler`: started again by it after a bad end.
  void processStarts(bool scheduled, bool byScheduler);
  void keyChanges(KeyCode keyCode, bool down, bool told);
  void mainStalls(Seconds duration);
  void sleeps();
  /// Files cannot be relied upon from now on (a count: each trouble ends by itself); `unreadable` ones not even read.
  void diskTrouble(int change, bool unreadable);
  void queuesHang(bool hang);
  void grabDenied(bool denied) {
    denied_ = denied;
    tapDisabled();
  }
  void tapDisabled() {
    mustSwallow_ = false;
    dirty_ = true;
  }
  void terminationSignal();
  void compositorEnds() { isLockLeft_ = isCoverLeft_ = false; }
  /// A lock may have no mark from now on, and who watches over it cannot tell whether it was taken over.
  void marksMayBeMissing() { hasMarks_ = false; }
  /// Nobody can start the program again.
  void programGone() { programGone_ = true; }
  void quitRequest() { quitAsked_ = true; }
  void deathExpected() { deathExpected_ = true; }
  /// The clocks, the calendar or the settings were changed.
  void clockOrSettingsChanged() {
    hoursEdge_ = Date::min();
    hoursMoved_ = now();
  }

  /// The five keys on the screens; none when nothing asks for keys.
  [[nodiscard]] std::vector<KeyIndicator> shownKeys() const;
  /// The fault of an exception.
  void fail(Rule rule, const std::string& what);

 private:
  enum class Phase { none, locked, grace, degraded, opened };
  /// A moment of both clocks that promises are measured by.
  struct Moment {
    Seconds up = 0;
    Seconds working = 0;
  };
  struct Key {
    bool down = false;
    bool told = false;   // of its going down
    bool clean = false;  // told, and at once
    bool stuck = false;  // up, but nobody told the program
    Moment pressed{};
    Moment since{};  // of the hold that the poll can tell from a break
    std::optional<Moment> up;
  };
  struct Panels {
    int blockers = 0;
    int others = 0;
    bool opaque = true;
    bool fit = true;
  };
  struct SeenUnlock {
    std::string stamp;  // "2026-11-16T23:41:07"
    std::string night;
    std::string otherNight;  // the other evening that it might belong to, by the date alone
    int startHour;           // of that time
    int endHour;
    bool hoursOn;
  };
  struct UnlockLine {
    std::string text;
    SeenUnlock unlock;
    Moment at;
    bool isDue;  // false: it may be missing
  };
  struct Record {
    std::string night;
    std::string firedAt;
    std::int64_t idleSeconds = 0;
    friend bool operator==(const Record&, const Record&) = default;
  };
  struct DueRecord {
    Record record;
    std::string oldest;
    Moment at;
    bool isDue;
  };
  enum Promise { covered, opaque, pictured, lockdown, tapped, granted, sessionLocked, shellCovers, PROMISES };

  void afterEvent();
  [[nodiscard]] Moment now() const;
  [[nodiscard]] bool isStalled() const;
  /// Whether it has been so for longer than `patience` of uptime; `since` is when that began.
  bool lasts(std::optional<Moment>& since, bool isSo, Seconds patience);
  /// Whether more than `patience` of working time went by since `from`; if not, looks again when it has.
  bool late(const Moment& from, Seconds patience);
  bool lateByUptime(const Moment& from, Seconds patience);
  /// Fails when `kept` is false for more than `patience` of working time.
  void promise(Promise which, bool kept, Seconds patience, Rule rule, const char* what);

  void readOutput();
  void readLine(const std::string& line);
  void lockBegins(bool again);
  void unlockSeen(const std::string& line);
  void processEnded();
  /// Whether a rehearsal is on, and its watchdog has every reason to end the process.
  [[nodiscard]] bool isHungRehearsal() const;
  void checkStart();
  void checkHours();
  void checkLocked();
  void checkGrace();
  void checkDegraded();
  void checkOpened();
  void checkNone();
  void checkOwner();
  void checkShell();
  void checkPictures();
  void checkChallenge(const std::vector<KeyIndicator>& keys);
  void checkEarned();
  void checkLetOut(const std::vector<KeyIndicator>& keys);
  /// Before the two seconds that an exit may take, in which the hours may begin.
  [[nodiscard]] bool hoursWereOn() const;
  void checkTimers();
  [[nodiscard]] bool isShowingSettings() const;
  void checkEpoch();
  [[nodiscard]] static std::string dayText(std::chrono::sys_days day);
  void knowFiles();
  void checkFiles();
  [[nodiscard]] static std::vector<Record> decoded(const std::string& content);
  void checkUnlockLog();
  void checkRecords();
  void expectRecord();

  [[nodiscard]] bool hoursAreOn(Date date) const;
  [[nodiscard]] int storedHour(const char* key, int absent) const;
  [[nodiscard]] bool storedFlag(const char* key, bool absent) const;
  [[nodiscard]] Panels panels() const;
  [[nodiscard]] Seconds required() const { return unlocks_ == 0 ? 30 : 60; }

  SimMachine& machine_;
  Epoch epoch_;
  std::optional<Fault> fault_;

  // When to look again.
  std::uint64_t effects_ = 0;
  bool dirty_ = true;
  Seconds lookAt_ = 0;
  Date hoursEdge_ = Date::min();

  // The main thread.
  Seconds stalledBefore_ = 0;  // in stalls that are over
  Seconds stallBegan_ = 0;
  Seconds stallEnds_ = 0;

  // The process.
  Phase phase_ = Phase::none;
  Phase phaseBefore_ = Phase::none;
  bool scheduled_ = false;
  bool byScheduler_ = false;
  bool starting_ = false;
  std::uint32_t optionsAtStart_ = 0;
  std::size_t endings_ = 0;
  std::size_t lines_ = 0;
  std::optional<Moment> diedAt_;
  bool deathExpected_ = false;
  bool programGone_ = false;
  bool isLockLeft_ = false;   // by the process that ended last
  bool isCoverLeft_ = false;  // and none of its successors has covered yet
  bool isDisplayGone_ = false;
  bool hasMarks_ = true;
  bool quitAsked_ = false;
  std::optional<Moment> termAt_;
  std::optional<int> lastEpoch_;
  bool epochMustGrow_ = false;

  // The hours.
  bool hoursOn_ = false;
  std::optional<Moment> hoursOverSince_;
  std::optional<Moment> ownerlessSince_;
  std::optional<Moment> lockedOutsideSince_;
  std::optional<Moment> untakenSince_;
  std::optional<Moment> abandonedSince_;
  std::optional<Moment> heldOutsideSince_;
  Moment hoursMoved_{-1000, -1000};

  // The lock.
  Moment phaseBegan_{};
  bool tapPromised_ = false;
  int unlocks_ = 0;
  int blockersAtUnlock_ = 0;
  bool cardDue_ = false;
  bool denied_ = false;
  double leastCover_ = 0;
  std::vector<PixelRect> screens_;
  Moment screensChanged_{};
  std::array<std::optional<Moment>, PROMISES> broken_{};
  Moment lastEffect_{};

  // The keyboard.
  std::array<Key, 256> keys_{};
  std::vector<KeyCode> asked_;
  std::vector<KeyCode> askedBefore_;  // by the lock before
  std::vector<KeyCode> replaced_;     // by Space, in favour of what is asked now
  Moment replacedAt_{};
  int draws_ = 0;  // that Space asked for and nobody has seen yet
  Moment drawAsked_{};
  bool drawnUnseen_ = false;       // while no screen showed any keys
  int sameKeys_ = 0;               // locks running that asked for the same
  std::optional<Moment> refresh_;  // look again soon: a key may have changed what is asked
  Moment disturbed_{};             // the last moment from which a hold begins anew
  Moment held_{};                  // the last moment at which the algorithm itself forgets all keys
  std::size_t foreign_ = 0;
  bool wasTaken_ = false;
  bool wasTakenBefore_ = false;  // at the look before
  std::optional<Moment> liftedAt_;
  bool mustSwallow_ = false;  // the keyboard was taken when the lock was lifted, and nobody took it away since

  // Rehearsals.
  std::optional<Moment> panelsSince_;
  bool pillBefore_ = false;
  bool wasBlind_ = false;  // there was a moment without a screen
  std::optional<Moment> escapeAt_;

  // The files.
  int troubles_ = 0;
  bool unreadable_ = false;
  bool hanging_ = false;
  std::string unlockLogBefore_;  // all this
  std::string unlockLog_;
  std::vector<SeenUnlock> seenUnlocks_;  // whose lines are there
  std::deque<UnlockLine> dueLines_;
  std::string recordFile_;
  std::vector<Record> records_;
  std::optional<DueRecord> dueRecord_;
};

}  // namespace dormel::nights
