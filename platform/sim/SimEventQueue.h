// Things that are to happen, ordered by virtual time and, at one moment, by the order in which they were asked for.
//
// Made for whole nights in milliseconds: a repeating event keeps its slot and its task, so a tick allocates nothing.
// Events may add and cancel events, their own included, while they run.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/RunLoop.h"

namespace dormel {

/// Microseconds of virtual uptime.
using Micros = std::int64_t;

[[nodiscard]] Micros toMicros(Seconds seconds);

class SimEventQueue {
 public:
  /// When an event is due. Sequence numbers are the caller's, one series for all queues of a machine.
  struct Key {
    Micros time = 0;
    std::uint64_t sequence = 0;
    friend bool operator<(const Key& a, const Key& b) {
      return a.time != b.time ? a.time < b.time : a.sequence < b.sequence;
    }
  };

  using Id = std::uint64_t;

  /// An event at `key`; with an `interval` above 0 it comes again. The answer is never 0.
  Id add(Key key, Micros interval, Task task);

  /// Ids that ran out or were cancelled before are ignored.
  void cancel(Id id);

  /// The next event's key; null when there is none. Valid until the queue changes.
  [[nodiscard]] const Key* next();

  /// Runs the next event; there must be one. A repeating event is due again at the first multiple of its interval
  /// that lies after `now` as it stands when the event has run: missed ticks are not made up for.
  void runNext(const Micros& now, std::uint64_t& sequence);

  /// How many repeating events there are.
  [[nodiscard]] int repeating() const;

  /// Forgets every event. What their tasks hold may use the queue while it goes.
  void clear();

 private:
  struct Slot {
    Task task;
    Micros interval = 0;
    Id id = 0;  // 0: free
  };
  struct Entry {
    Key key;
    Id id;
  };
  struct Later {
    bool operator()(const Entry& a, const Entry& b) const { return b.key < a.key; }
  };

  [[nodiscard]] Slot* find(Id id);
  void push(Key key, Id id);

  std::vector<Entry> heap_;
  std::vector<Slot> slots_;
  std::vector<std::uint32_t> free_;
  std::uint64_t serial_ = 0;
};

}  // namespace dormel
