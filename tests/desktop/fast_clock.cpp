// Runs a program's clocks faster: preloaded into it, and into the programs that it starts.
//
// FAST_CLOCK holds "SPEED MONOTONIC REALTIME": from those two moments on, in nanoseconds, either clock goes SPEED times
// as fast, and all that waits for one of them waits that much shorter. All processes that are given the same text have
// the same time. libfaketime does not serve here: its timer descriptors, which the main loop waits by, never elapse. A
// POSIX timer keeps the real time.
#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <sys/epoll.h>
#include <sys/time.h>
#include <sys/timerfd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

constexpr std::int64_t SECOND = 1'000'000'000;
/// Moments that stand for "never" are not moved.
constexpr std::int64_t NEVER = std::int64_t{1} << 62;

struct Speed {
  long long factor = 1;
  long long monotonic = 0;
  long long realtime = 0;
};

const Speed& speed() {
  static const Speed given = [] {
    Speed read;
    const char* text = std::getenv("FAST_CLOCK");
    if (text == nullptr || std::sscanf(text, "%lld %lld %lld", &read.factor, &read.monotonic, &read.realtime) != 3) {
      std::fputs("FAST_CLOCK must hold a speed and two moments\n", stderr);
      std::abort();
    }
    return read;
  }();
  return given;
}

template <typename Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool isFaster(clockid_t clock) {
  return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE || clock == CLOCK_MONOTONIC ||
         clock == CLOCK_MONOTONIC_COARSE || clock == CLOCK_MONOTONIC_RAW || clock == CLOCK_BOOTTIME ||
         clock == CLOCK_REALTIME_ALARM || clock == CLOCK_BOOTTIME_ALARM;
}

std::int64_t baseOf(clockid_t clock) {
  const bool isWall = clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE || clock == CLOCK_REALTIME_ALARM;
  return isWall ? speed().realtime : speed().monotonic;
}

std::int64_t count(const timespec& time) {
  return time.tv_sec >= NEVER / SECOND ? NEVER : time.tv_sec * SECOND + time.tv_nsec;
}
timespec moment(std::int64_t nanoseconds) { return {nanoseconds / SECOND, nanoseconds % SECOND}; }

/// The real moment at which the fast clock shows `time`.
timespec realMoment(clockid_t clock, const timespec& time) {
  if (!isFaster(clock) || count(time) >= NEVER) return time;
  const std::int64_t base = baseOf(clock);
  const std::int64_t real = base + (count(time) - base) / speed().factor;
  return moment(real > 0 ? real : 1);
}
timespec realSpan(const timespec& span) {
  const std::int64_t length = count(span);
  if (length == 0 || length >= NEVER) return span;
  return moment(length / speed().factor > 0 ? length / speed().factor : 1);
}
int realMilliseconds(int timeout) {
  return timeout <= 0 ? timeout : static_cast<int>((timeout + speed().factor - 1) / speed().factor);
}

std::array<clockid_t, 1024> clockOfDescriptor{};

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
  static const auto original = next<int (*)(clockid_t, timespec*)>("clock_gettime");
  const int status = original(clock, time);
  if (status == 0 && isFaster(clock)) *time = moment(baseOf(clock) + (count(*time) - baseOf(clock)) * speed().factor);
  return status;
}

int gettimeofday(timeval* time, void* /*zone*/) noexcept {
  timespec now{};
  const int status = clock_gettime(CLOCK_REALTIME, &now);
  *time = {now.tv_sec, now.tv_nsec / 1000};
  return status;
}

time_t time(time_t* result) noexcept {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  if (result != nullptr) *result = now.tv_sec;
  return now.tv_sec;
}

int timerfd_create(clockid_t clock, int flags) noexcept {
  static const auto original = next<int (*)(clockid_t, int)>("timerfd_create");
  const int fd = original(clock, flags);
  if (fd >= 0 && static_cast<std::size_t>(fd) < clockOfDescriptor.size())
    clockOfDescriptor[static_cast<std::size_t>(fd)] = clock;
  return fd;
}

int timerfd_settime(int fd, int flags, const itimerspec* wanted, itimerspec* before) noexcept {
  static const auto original = next<int (*)(int, int, const itimerspec*, itimerspec*)>("timerfd_settime");
  itimerspec real = *wanted;
  const auto index = static_cast<std::size_t>(fd);
  const clockid_t clock = index < clockOfDescriptor.size() ? clockOfDescriptor[index] : CLOCK_MONOTONIC;
  real.it_interval = realSpan(wanted->it_interval);
  if (count(wanted->it_value) != 0) {
    real.it_value = (flags & TFD_TIMER_ABSTIME) != 0 ? realMoment(clock, wanted->it_value) : realSpan(wanted->it_value);
  }
  return original(fd, flags, &real, before);
}

int epoll_wait(int fd, epoll_event* events, int most, int timeout) {
  static const auto original = next<int (*)(int, epoll_event*, int, int)>("epoll_wait");
  return original(fd, events, most, realMilliseconds(timeout));
}

int epoll_pwait2(int fd, epoll_event* events, int most, const timespec* timeout, const sigset_t* mask) {
  static const auto original = next<int (*)(int, epoll_event*, int, const timespec*, const sigset_t*)>("epoll_pwait2");
  const timespec real = timeout != nullptr ? realSpan(*timeout) : timespec{};
  return original(fd, events, most, timeout != nullptr ? &real : nullptr, mask);
}

int poll(pollfd* descriptors, nfds_t number, int timeout) {
  static const auto original = next<int (*)(pollfd*, nfds_t, int)>("poll");
  return original(descriptors, number, realMilliseconds(timeout));
}

int ppoll(pollfd* descriptors, nfds_t number, const timespec* timeout, const sigset_t* mask) {
  static const auto original = next<int (*)(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
  const timespec real = timeout != nullptr ? realSpan(*timeout) : timespec{};
  return original(descriptors, number, timeout != nullptr ? &real : nullptr, mask);
}

int nanosleep(const timespec* span, timespec* left) {
  static const auto original = next<int (*)(const timespec*, timespec*)>("nanosleep");
  const timespec real = realSpan(*span);
  return original(&real, left);
}

int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* until) {
  static const auto original =
      next<int (*)(pthread_cond_t*, pthread_mutex_t*, const timespec*)>("pthread_cond_timedwait");
  const timespec real = realMoment(CLOCK_REALTIME, *until);
  return original(condition, mutex, &real);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* until) {
  static const auto original =
      next<int (*)(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*)>("pthread_cond_clockwait");
  const timespec real = realMoment(clock, *until);
  return original(condition, mutex, clock, &real);
}

}  // extern "C"
