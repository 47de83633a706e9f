#include "platform/sim/SimEventQueue.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace dormel {
namespace {

// An id is a serial number above the index of its slot, so that a used-up id never fits its slot's next tenant.
constexpr unsigned SLOT_BITS = 24;
constexpr std::uint64_t SLOT_MASK = (std::uint64_t{1} << SLOT_BITS) - 1;

}  // namespace

Micros toMicros(Seconds seconds) { return std::llround(seconds * 1e6); }

SimEventQueue::Id SimEventQueue::add(Key key, Micros interval, Task task) {
  if (free_.empty()) {
    free_.push_back(static_cast<std::uint32_t>(slots_.size()));
    slots_.emplace_back();
  }
  const std::uint32_t index = free_.back();
  free_.pop_back();
  const Id id = (++serial_ << SLOT_BITS) | index;
  slots_[index] = {std::move(task), interval, id};
  push(key, id);
  return id;
}

void SimEventQueue::cancel(Id id) {
  Slot* slot = find(id);
  if (slot == nullptr) return;
  const Task dropped = std::exchange(slot->task, nullptr);  // may use the queue while it goes
  slot->id = 0;
  free_.push_back(static_cast<std::uint32_t>(id & SLOT_MASK));
}

const SimEventQueue::Key* SimEventQueue::next() {
  while (!heap_.empty() && find(heap_.front().id) == nullptr) {
    std::pop_heap(heap_.begin(), heap_.end(), Later{});
    heap_.pop_back();
  }
  return heap_.empty() ? nullptr : &heap_.front().key;
}

void SimEventQueue::runNext(const Micros& now, std::uint64_t& sequence) {
  std::pop_heap(heap_.begin(), heap_.end(), Later{});
  const Entry entry = heap_.back();
  heap_.pop_back();
  Slot* slot = find(entry.id);
  const Micros interval = slot->interval;
  Task task = std::exchange(slot->task, nullptr);  // stays whole even if it cancels itself
  if (interval == 0) {
    cancel(entry.id);
    task();
    return;
  }
  task();
  slot = find(entry.id);
  if (slot == nullptr) return;
  slot->task = std::move(task);
  Micros due = entry.key.time + interval;
  if (due <= now) due += (now - due) / interval * interval + interval;
  push({due, ++sequence}, entry.id);
}

int SimEventQueue::repeating() const {
  return static_cast<int>(
      std::count_if(slots_.begin(), slots_.end(), [](const Slot& slot) { return slot.id != 0 && slot.interval != 0; }));
}

void SimEventQueue::clear() {
  heap_.clear();
  free_.clear();
  const std::vector<Slot> dropped = std::exchange(slots_, {});
}

SimEventQueue::Slot* SimEventQueue::find(Id id) {
  const std::size_t index = id & SLOT_MASK;
  return index < slots_.size() && id != 0 && slots_[index].id == id ? &slots_[index] : nullptr;
}

void SimEventQueue::push(Key key, Id id) {
  heap_.push_back({key, id});
  std::push_heap(heap_.begin(), heap_.end(), Later{});
}

}  // namespace dormel
