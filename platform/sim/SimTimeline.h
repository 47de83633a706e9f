// Virtual time, and everything that happens in it: the main thread's queue and timers, the serial queues, the
// background timers, and what the world does (users, schedulers). All of it runs on the caller's thread, ordered by
// (time, order of asking); `place` tells where a piece of work believes to be.
//
// The timeline carries one process at a time. When it ends, its events are gone; the world's go on.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/RunLoop.h"
#include "platform/Time.h"
#include "platform/sim/SimEventQueue.h"

namespace dormel {

class SimTimeline {
 public:
  enum class Place { main, background };

  /// Both clocks start here; uptime at `uptime`.
  explicit SimTimeline(Date start) : wall_(start) {}

  [[nodiscard]] Date now() const { return wall_ + std::chrono::microseconds(uptime_); }
  [[nodiscard]] Seconds uptime() const { return static_cast<Seconds>(uptime_) / 1e6; }
  [[nodiscard]] Place place() const { return place_; }

  // Adding events. Those of the process are dropped, with the answer 0, when no process runs.
  std::uint64_t addMain(Seconds delay, Seconds interval, Task task);
  std::uint64_t addBackground(Seconds delay, Seconds interval, Task task);
  void addSerial(Task task);
  std::uint64_t addWorld(Seconds delay, Task task);
  void cancelMain(std::uint64_t id) { main_.cancel(id); }
  void cancelBackground(std::uint64_t id) { background_.cancel(id); }
  void cancelWorld(std::uint64_t id) { world_.cancel(id); }

  /// Lets `duration` seconds pass, with all that is due in them. Must not be called from inside an event.
  void advance(Seconds duration);
  /// Lets time pass until the wall clock shows `date`.
  void advanceTo(Date date);
  /// Lets time pass until `condition` holds, which is asked after every event, or `limit` seconds are over.
  bool advanceUntil(const std::function<bool()>& condition, Seconds limit);
  /// Runs what is due at this very moment.
  void settle() { advance(0); }

  /// Sets one clock and leaves the other. What uptime jumps over is late, and runs next.
  void jumpWallClock(Seconds by) { wall_ += std::chrono::microseconds(toMicros(by)); }
  void jumpUptime(Seconds by);
  /// The main thread does nothing for `duration` seconds from now; the others go on.
  void stallMain(Seconds duration);
  /// The whole process is stopped for `duration` seconds, as by a signal; what it owes is late.
  void stopProcess(Seconds duration);
  /// While the serial queues hang (a dead disk), their tasks wait, and an exit waits two seconds for them in vain.
  void setSerialQueuesHang(bool hang) { serialHang_ = hang; }

  /// Runs `work` as the process's main thread at this moment. False when it ended the process.
  bool perform(const Task& work);

  /// The process's timers that tick until they are cancelled, on the main thread and off it.
  [[nodiscard]] int repeatingTimers() const { return main_.repeating() + background_.repeating(); }

  [[nodiscard]] bool processRuns() const { return processRuns_; }
  void startProcess() { processRuns_ = true; }
  /// Ends the process from outside, at once: nothing of it runs any more, not even its serial queues.
  void killProcess(int status);
  /// Ends the process from inside: unwinds to the timeline, which lets the serial queues run dry and then asks for the
  /// status.
  [[noreturn]] void exit(const std::function<int()>& status);
  /// `leaving` is told when the process stops running its own code (and again, with false, while the serial queues
  /// get their last turn); `ended` when it is gone for good, its events dropped.
  void setProcessHooks(std::function<void(bool)> leaving, std::function<void(int)> ended) {
    leaving_ = std::move(leaving);
    ended_ = std::move(ended);
  }

  /// `after` runs after every event, whoever it belonged to; null for nobody.
  void setAfterEvent(std::function<void()> after) { afterEvent_ = std::move(after); }

  /// Drops all events of all kinds.
  void clear();

 private:
  struct Exit {
    std::function<int()> status;
  };

  [[nodiscard]] SimEventQueue::Key after(Seconds delay) { return {uptime_ + toMicros(delay), ++sequence_}; }
  bool runNextUpTo(Micros limit);
  template <typename Work>
  bool dispatch(Place place, Work&& work);
  void endProcess(const std::function<int()>& status, bool drain);

  Date wall_;  // the wall clock when uptime was 0
  Micros uptime_ = 0;
  Micros mainFreeAt_ = 0;
  Micros stoppedUntil_ = 0;
  std::uint64_t sequence_ = 0;
  SimEventQueue main_;
  SimEventQueue background_;
  SimEventQueue serial_;
  SimEventQueue world_;
  Place place_ = Place::main;
  bool processRuns_ = true;
  bool serialHang_ = false;
  std::function<void(bool)> leaving_;
  std::function<void(int)> ended_;
  std::function<void()> afterEvent_;
};

}  // namespace dormel
