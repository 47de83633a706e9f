#include "platform/linux/posix/PosixClock.h"

#include <langinfo.h>
#include <locale.h>
#include <time.h>

#include <memory>
#include <type_traits>

namespace dormel::posix {
namespace {

struct Moment {
  time_t seconds;
  std::chrono::microseconds rest;
};

Moment split(Date date) {
  const auto whole = std::chrono::floor<std::chrono::seconds>(date);
  return {static_cast<time_t>(whole.time_since_epoch().count()), date - whole};
}

std::optional<std::string> readHourPattern() {
  using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, decltype(&freelocale)>;
  const Locale locale(newlocale(LC_TIME_MASK, "", nullptr), &freelocale);
  if (!locale) return {};  // LC_TIME names a locale that is not installed
  const std::string format = nl_langinfo_l(T_FMT, locale.get());
  if (format.empty()) return {};
  for (const char* twelveHour : {"%r", "%I", "%l", "%p"}) {
    if (format.find(twelveHour) != std::string::npos) return "h a";
  }
  return "HH";
}

}  // namespace

Date PosixClock::now() const { return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()); }

Seconds PosixClock::uptime() const {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

LocalTime PosixCalendar::localTime(Date date) const {
  const Moment moment = split(date);
  tm parts{};
  // The user may move to another time zone while we run; only tzset looks at /etc/localtime again.
  tzset();
  localtime_r(&moment.seconds, &parts);
  return {parts.tm_year + 1900,
          parts.tm_mon + 1,
          parts.tm_mday,
          parts.tm_hour,
          parts.tm_min,
          parts.tm_sec,
          static_cast<int>(moment.rest.count() / 1000)};
}

std::optional<Date> PosixCalendar::addingDays(Date date, int days) const {
  const Moment moment = split(date);
  tm parts{};
  if (localtime_r(&moment.seconds, &parts) == nullptr) return {};
  parts.tm_mday += days;
  parts.tm_isdst = -1;  // the other day may be on the other side of a change
  const time_t other = mktime(&parts);
  if (other == static_cast<time_t>(-1)) return {};
  return Date(std::chrono::seconds(other)) + moment.rest;
}

std::optional<std::string> PosixCalendar::hourPattern() const {
  // Every screen's clock asks each second, and a locale is a file. Nobody changes this process's environment.
  static const std::optional<std::string> PATTERN = readHourPattern();
  return PATTERN;
}

}  // namespace dormel::posix
