#include "platform/sim/SimTime.h"

#include <cstdio>
#include <stdexcept>

namespace dormel {
namespace {

using std::chrono::days;
using std::chrono::floor;
using LocalMicros = std::chrono::local_time<std::chrono::microseconds>;

LocalMicros parsed(std::string_view text) {
  int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
  const std::string copy(text);
  if (std::sscanf(copy.c_str(), "%d-%d-%d %d:%d:%d", &y, &mo, &d, &h, &mi, &s) != 6) {
    throw std::invalid_argument("not a moment: " + copy);
  }
  const std::chrono::year_month_day date{std::chrono::year(y), std::chrono::month(static_cast<unsigned>(mo)),
                                         std::chrono::day(static_cast<unsigned>(d))};
  return std::chrono::local_days(date) + std::chrono::hours(h) + std::chrono::minutes(mi) + std::chrono::seconds(s);
}

}  // namespace

LocalTime SimCalendar::localTime(Date date) const {
  const Date local = date + offsetAt(date);
  const auto day = floor<days>(local);
  const std::chrono::year_month_day ymd(day);
  const auto micros = (local - day).count();
  LocalTime time;
  time.year = static_cast<int>(ymd.year());
  time.month = static_cast<int>(static_cast<unsigned>(ymd.month()));
  time.day = static_cast<int>(static_cast<unsigned>(ymd.day()));
  time.hour = static_cast<int>(micros / 3'600'000'000);
  time.minute = static_cast<int>(micros / 60'000'000 % 60);
  time.second = static_cast<int>(micros / 1'000'000 % 60);
  time.millisecond = static_cast<int>(micros / 1'000 % 1'000);
  return time;
}

std::optional<Date> SimCalendar::addingDays(Date date, int count) const {
  const LocalMicros local{(date + offsetAt(date)).time_since_epoch()};
  return fromLocal(local + days(count));
}

Date SimCalendar::at(std::string_view text) const { return fromLocal(parsed(text)); }

Date SimCalendar::next(int hour, int minute, Date date) const {
  const LocalMicros local{(date + offsetAt(date)).time_since_epoch()};
  for (auto day = floor<days>(local);; day += days(1)) {
    const Date candidate = fromLocal(LocalMicros(day) + std::chrono::hours(hour) + std::chrono::minutes(minute));
    if (candidate > date) return candidate;
  }
}

Date SimCalendar::moment(std::string_view text, Offset offset) {
  return Date(parsed(text).time_since_epoch()) - offset;
}

SimCalendar::Offset SimCalendar::offsetAt(Date date) const {
  auto next = transitions_.upper_bound(date);
  return next == transitions_.begin() ? base_ : std::prev(next)->second;
}

Date SimCalendar::fromLocal(LocalMicros local) const {
  const Date unshifted{local.time_since_epoch()};
  // The offsets before and after whatever change is near; no zone changes twice within two days.
  const Offset before = offsetAt(unshifted - days(1));
  const Offset after = offsetAt(unshifted + days(1));
  for (const Offset offset : {before, after}) {
    if (offsetAt(unshifted - offset) == offset) return unshifted - offset;
  }
  return unshifted - before;
}

}  // namespace dormel
