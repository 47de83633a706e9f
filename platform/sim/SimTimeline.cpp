#include "platform/sim/SimTimeline.h"

#include <algorithm>
#include <utility>

namespace dormel {
namespace {

constexpr Seconds LAST_TURN_OF_QUEUES = 2.0;

}  // namespace

std::uint64_t SimTimeline::addMain(Seconds delay, Seconds interval, Task task) {
  return processRuns_ ? main_.add(after(delay), toMicros(interval), std::move(task)) : 0;
}

std::uint64_t SimTimeline::addBackground(Seconds delay, Seconds interval, Task task) {
  return processRuns_ ? background_.add(after(delay), toMicros(interval), std::move(task)) : 0;
}

void SimTimeline::addSerial(Task task) {
  if (processRuns_) serial_.add(after(0), 0, std::move(task));
}

std::uint64_t SimTimeline::addWorld(Seconds delay, Task task) { return world_.add(after(delay), 0, std::move(task)); }

void SimTimeline::advance(Seconds duration) {
  const Micros target = uptime_ + toMicros(duration);
  while (runNextUpTo(target)) {
  }
  uptime_ = std::max(uptime_, target);
}

void SimTimeline::advanceTo(Date date) {
  const auto left = [&] { return (date - now()).count(); };
  while (left() > 0) {  // an event may set the wall clock
    if (!runNextUpTo(uptime_ + left())) uptime_ += left();
  }
  settle();
}

bool SimTimeline::advanceUntil(const std::function<bool()>& condition, Seconds limit) {
  const Micros target = uptime_ + toMicros(limit);
  while (!condition()) {
    if (!runNextUpTo(target)) {
      uptime_ = std::max(uptime_, target);
      return condition();
    }
  }
  return true;
}

void SimTimeline::jumpUptime(Seconds by) {
  const Micros micros = std::max<Micros>(toMicros(by), 0);
  uptime_ += micros;
  wall_ -= std::chrono::microseconds(micros);
}

void SimTimeline::stallMain(Seconds duration) { mainFreeAt_ = std::max(mainFreeAt_, uptime_ + toMicros(duration)); }

void SimTimeline::stopProcess(Seconds duration) {
  stallMain(duration);
  stoppedUntil_ = std::max(stoppedUntil_, uptime_ + toMicros(duration));
}

bool SimTimeline::runNextUpTo(Micros limit) {
  SimEventQueue* queue = nullptr;
  SimEventQueue::Key first{};
  const auto consider = [&](SimEventQueue& candidate, Micros notBefore) {
    const SimEventQueue::Key* key = candidate.next();
    if (key == nullptr) return;
    const SimEventQueue::Key due{std::max(key->time, notBefore), key->sequence};
    if (queue != nullptr && first < due) return;
    queue = &candidate;
    first = due;
  };
  consider(main_, mainFreeAt_);
  consider(background_, stoppedUntil_);
  if (!serialHang_) consider(serial_, stoppedUntil_);
  consider(world_, 0);
  if (queue == nullptr || first.time > limit) return false;
  uptime_ = std::max(uptime_, first.time);
  const bool offMain = queue == &background_ || queue == &serial_;
  dispatch(offMain ? Place::background : Place::main, [&] { queue->runNext(uptime_, sequence_); });
  if (afterEvent_) afterEvent_();
  return true;
}

bool SimTimeline::perform(const Task& work) { return dispatch(Place::main, work); }

template <typename Work>
bool SimTimeline::dispatch(Place place, Work&& work) {
  struct Restore {
    Place& place;
    Place before;
    ~Restore() { place = before; }
  };
  std::function<int()> status;
  {
    const Restore restore{place_, std::exchange(place_, place)};
    try {
      work();
    } catch (const Exit& exit) {
      status = exit.status;
    }
  }
  if (!status) return true;
  endProcess(status, true);
  return false;
}

void SimTimeline::exit(const std::function<int()>& status) {
  if (leaving_) leaving_(true);
  throw Exit{status};
}

void SimTimeline::killProcess(int status) {
  if (!processRuns_) return;
  if (leaving_) leaving_(true);
  endProcess([status] { return status; }, false);
}

void SimTimeline::endProcess(const std::function<int()>& status, bool drain) {
  if (!processRuns_) return;
  main_.clear();
  background_.clear();
  if (drain && serialHang_ && serial_.next() != nullptr) uptime_ += toMicros(LAST_TURN_OF_QUEUES);
  if (drain && !serialHang_) {
    if (leaving_) leaving_(false);
    const Place before = std::exchange(place_, Place::background);
    while (serial_.next() != nullptr) {
      try {
        serial_.runNext(uptime_, sequence_);
      } catch (const Exit&) {  // it is already ending
      }
    }
    place_ = before;
  }
  if (leaving_) leaving_(true);
  const int code = status();
  processRuns_ = false;
  main_.clear();
  background_.clear();
  serial_.clear();
  mainFreeAt_ = stoppedUntil_ = 0;
  if (ended_) ended_(code);
}

void SimTimeline::clear() {
  processRuns_ = false;
  main_.clear();
  background_.clear();
  serial_.clear();
  world_.clear();
}

}  // namespace dormel
