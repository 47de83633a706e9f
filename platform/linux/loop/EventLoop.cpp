#include "platform/linux/loop/EventLoop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <systemd/sd-event.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <system_error>
#include <utility>

namespace dormel {
namespace {

using std::chrono::nanoseconds;

/// How long a toolkit's loop is kept from its own work.
constexpr std::chrono::milliseconds TURN{5};

constexpr std::uint64_t EXACTLY = 1;  // in microseconds; sd-event reads 0 as a quarter of a second
constexpr Seconds LONGEST = 1e9;      // thirty years, and no overflow

nanoseconds duration(Seconds seconds) {
  const Seconds bounded = seconds > 0 ? std::min(seconds, LONGEST) : 0;  // not a number is 0, too
  return nanoseconds(std::llround(bounded * 1e9));
}

void check(int result) {
  if (result < 0) throw std::system_error(-result, std::generic_category(), "the main loop");
}

}  // namespace

class EventLoop::Descriptor final : public Registration {
 public:
  Descriptor(sd_event* event, int fd, std::uint32_t events, std::function<void(std::uint32_t)> action)
      : action_(std::make_shared<std::function<void(std::uint32_t)>>(std::move(action))) {
    sd_event_source* source = nullptr;
    sd_event_add_io(event, &source, fd, events, &ready, this);
    source_.reset(source);
  }

  [[nodiscard]] bool isWatched() const { return source_ != nullptr; }

 private:
  static int ready(sd_event_source* /*source*/, int /*fd*/, std::uint32_t events, void* self) {
    const auto action = static_cast<Descriptor*>(self)->action_;  // which may end its own watch
    (*action)(events);
    return 0;
  }

  std::shared_ptr<std::function<void(std::uint32_t)>> action_;
  Source source_;
};

void EventLoop::Unref::operator()(sd_event* event) const { sd_event_unref(event); }

// Turned off at once, not only once its own call is over: its descriptor's number may be somebody else's by then.
void EventLoop::Unref::operator()(sd_event_source* source) const { sd_event_source_disable_unref(source); }

EventLoop::EventLoop() {
  sd_event* event = nullptr;
  check(sd_event_new(&event));
  event_.reset(event);
  bell_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  check(bell_ < 0 ? -errno : 0);
  sd_event_source* source = nullptr;
  check(sd_event_add_io(event, &source, bell_, EPOLLIN, &posted, this));
  bellSource_.reset(source);
  check(sd_event_source_set_io_fd_own(source, 1));
  check(sd_event_source_set_prepare(source, &prepare));
  check(sd_event_add_time(event, &source, CLOCK_MONOTONIC, 0, EXACTLY, &elapsed, this));
  timerSource_.reset(source);
  check(sd_event_source_set_enabled(source, SD_EVENT_OFF));
}

EventLoop::~EventLoop() = default;

void EventLoop::ring() const {
  const std::uint64_t one = 1;
  static_cast<void>(!::write(bell_, &one, sizeof one));  // it fails only where the bell is ringing already
}

void EventLoop::async(Task task) {
  bool first = false;
  {
    const std::lock_guard lock(mutex_);
    first = posted_.empty();
    posted_.push_back(std::move(task));
  }
  if (first) ring();
}

int EventLoop::posted(sd_event_source* /*source*/, int fd, std::uint32_t /*events*/, void* self) {
  auto& loop = *static_cast<EventLoop*>(self);
  std::uint64_t rings = 0;
  static_cast<void>(!::read(fd, &rings, sizeof rings));
  std::vector<Task> now;
  {
    const std::lock_guard lock(loop.mutex_);
    now.swap(loop.posted_);
  }
  for (const Task& task : now) task();
  return 0;
}

void EventLoop::asyncAfter(Seconds delay, Task task) { schedule(delay, false, std::move(task)); }

TimerId EventLoop::schedule(Seconds interval, bool repeats, Task task, Seconds accuracy) {
  const nanoseconds delay = duration(interval);
  timers_.emplace(++lastTimer_,
                  Scheduled{Steady::now() + delay, repeats ? std::max(delay, nanoseconds(1)) : nanoseconds(0),
                            duration(accuracy), std::make_shared<const Task>(std::move(task))});
  return static_cast<TimerId>(lastTimer_);
}

void EventLoop::cancel(TimerId id) { timers_.erase(static_cast<std::uint64_t>(id)); }

int EventLoop::prepare(sd_event_source* /*source*/, void* self) {
  auto& loop = *static_cast<EventLoop*>(self);
  loop.beforeWaiting_.call();
  loop.arm();
  return 0;
}

/// Has the loop woken when the first timer can wait no longer.
void EventLoop::arm() {
  std::optional<Steady::time_point> latest;
  for (const auto& [id, timer] : timers_) {
    const auto end = timer.due + timer.accuracy;
    if (!latest || end < *latest) latest = end;
  }
  if (latest == armedFor_) return;  // set anew, one that has elapsed would wait for another turn
  armedFor_ = latest;
  if (latest) {
    const auto moment = std::chrono::ceil<std::chrono::microseconds>(latest->time_since_epoch());
    sd_event_source_set_time(timerSource_.get(), static_cast<std::uint64_t>(moment.count()));
  }
  sd_event_source_set_enabled(timerSource_.get(), latest ? SD_EVENT_ONESHOT : SD_EVENT_OFF);
}

int EventLoop::elapsed(sd_event_source* /*source*/, std::uint64_t /*usec*/, void* self) {
  static_cast<EventLoop*>(self)->tick();
  return 0;
}

void EventLoop::tick() {
  armedFor_.reset();
  const auto now = Steady::now();
  std::vector<std::pair<Steady::time_point, std::uint64_t>> due;
  for (const auto& [id, timer] : timers_) {
    if (timer.due <= now) due.emplace_back(timer.due, id);
  }
  std::sort(due.begin(), due.end());
  for (const auto& [moment, id] : due) {
    const auto found = timers_.find(id);
    if (found == timers_.end()) continue;  // cancelled by one before it
    const auto task = found->second.task;
    if (found->second.interval == nanoseconds(0)) timers_.erase(found);
    (*task)();
    const auto again = timers_.find(id);
    if (again == timers_.end()) continue;
    Scheduled& timer = again->second;
    timer.due += timer.interval * ((Steady::now() - timer.due) / timer.interval + 1);
  }
}

EventLoop::Watch EventLoop::watch(int fd, std::uint32_t events, std::function<void(std::uint32_t)> action) {
  auto descriptor = std::make_unique<Descriptor>(event_.get(), fd, events, std::move(action));
  return descriptor->isWatched() ? std::move(descriptor) : nullptr;
}

void EventLoop::run() {
  isStopped_ = false;
  while (!isStopped_ && sd_event_run(event_.get(), UINT64_MAX) >= 0) {
  }
}

void EventLoop::stop() {
  isStopped_ = true;
  ring();  // it may be about to wait
}

int EventLoop::descriptor() const { return sd_event_get_fd(event_.get()); }

void EventLoop::dispatchPending() {
  sd_event* event = event_.get();
  const auto end = Steady::now() + TURN;
  for (;;) {
    switch (sd_event_get_state(event)) {
      case SD_EVENT_ARMED:
        if (sd_event_wait(event, 0) > 0) break;
        // Nothing is left. Timers set since the last time reach the kernel by preparing anew.
        if (sd_event_prepare(event) <= 0) return;
        break;
      case SD_EVENT_INITIAL:
        if (sd_event_prepare(event) < 0) return;
        break;
      case SD_EVENT_PENDING:
        if (Steady::now() >= end) {
          ring();  // what sd-event has taken from the kernel no longer shows in its descriptor
          return;
        }
        sd_event_dispatch(event);
        break;
      default:
        return;
    }
  }
}

}  // namespace dormel
