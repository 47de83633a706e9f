#include "platform/linux/supervisor/StartTimer.h"

#include <sys/inotify.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>

#include "platform/linux/jobs/StartCalendar.h"

namespace dormel::jobs::supervisor {
namespace {

/// Not time(), which runs on a coarser clock than the timer: just after the timer fired it may still tell the
/// second before.
std::time_t now() {
  timespec moment{};
  ::clock_gettime(CLOCK_REALTIME, &moment);
  return moment.tv_sec;
}

}  // namespace

StartTimer::StartTimer()
    : clock_(::timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK)),
      zone_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
  watchZone();
}

void StartTimer::watchZone() {
  constexpr std::uint32_t changes = IN_ATTRIB | IN_MOVE_SELF | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_DONT_FOLLOW;
  // A change of zone replaces the link, and the watch ends with the old one. Where there is none for the moment,
  // whatever appears beside it is a reason to look again.
  if (::inotify_add_watch(zone_.get(), "/etc/localtime", changes) < 0) {
    ::inotify_add_watch(zone_.get(), "/etc", IN_CREATE | IN_MOVED_TO | IN_ONESHOT);
  }
}

void StartTimer::arm(std::optional<StartTime> start) {
  start_ = start;
  next_.reset();
  itimerspec moment{};
  int armed = 0;
  // Refused when somebody set the clock after we had looked at it: `due` will not hear of that any more.
  do {
    if (start_) {
      ::tzset();
      next_ = nextStart(*start_, now());
      moment.it_value.tv_sec = *next_;
    }
    armed = ::timerfd_settime(clock_.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &moment, nullptr);
  } while (armed != 0 && errno == ECANCELED);
}

bool StartTimer::due() {
  std::uint64_t expirations = 0;
  const bool clockNews = ::read(clock_.get(), &expirations, sizeof expirations) >= 0 || errno == ECANCELED;
  std::array<char, 4096> events{};
  bool zoneNews = false;
  while (::read(zone_.get(), events.data(), events.size()) > 0) zoneNews = true;
  if (!clockNews && !zoneNews) return false;
  if (zoneNews) watchZone();
  const bool reached = next_ && now() >= *next_;
  arm(start_);
  return reached;
}

}  // namespace dormel::jobs::supervisor
