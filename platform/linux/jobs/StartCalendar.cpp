#include "platform/linux/jobs/StartCalendar.h"

#include <array>
#include <tuple>

namespace dormel::jobs {
namespace {

struct Day {
  int year, month, day;
};

std::tm localTime(std::time_t moment) {
  std::tm local{};
  localtime_r(&moment, &local);
  return local;
}

std::time_t moment(Day day, int hour, int minute) {
  std::tm local{};
  local.tm_year = day.year;
  local.tm_mon = day.month;
  local.tm_mday = day.day;
  local.tm_hour = hour;
  local.tm_min = minute;
  local.tm_isdst = -1;
  return std::mktime(&local);
}

/// The first minute at which the local clock shows this day and time or later ones. Looking through the day
/// minute by minute is exact for whatever a zone's rules do to it.
std::time_t startOn(Day day, StartTime start) {
  constexpr int MINUTE = 60;
  const std::time_t noon = moment(day, 12, 0);
  const std::time_t end = noon + std::time_t{20} * 60 * MINUTE;
  std::tm wanted = localTime(noon);
  wanted.tm_hour = start.hour;
  wanted.tm_min = start.minute;
  const auto order = [](const std::tm& t) { return std::tuple(t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min); };
  std::time_t t = noon - std::time_t{20} * 60 * MINUTE;
  while (t < end && order(localTime(t)) < order(wanted)) t += MINUTE;
  return t;
}

Day dayOf(std::time_t moment, int later) {
  const std::tm local = localTime(moment);
  return {local.tm_year, local.tm_mon, local.tm_mday + later};  // mktime carries over the month's end
}

}  // namespace

std::string clockText(StartTime start) {
  const auto twoDigits = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  return twoDigits(start.hour) + ":" + twoDigits(start.minute);
}

std::string localTimeText(std::time_t moment) {
  const std::tm local = localTime(moment);
  std::array<char, 64> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %Z", &local);
  return text.data();
}

std::time_t nextStart(StartTime start, std::time_t after) {
  for (int later = 0;; ++later) {
    const std::time_t candidate = startOn(dayOf(after, later), start);
    if (candidate > after) return candidate;
  }
}

std::vector<std::time_t> startsSkippedByClockChange(StartTime start, std::time_t from, int days) {
  std::vector<std::time_t> displaced;
  for (int later = 0; later < days; ++later) {
    const Day day = dayOf(from, later);
    const std::tm plain = localTime(moment(day, start.hour, start.minute));
    if (plain.tm_hour == start.hour && plain.tm_min == start.minute) continue;
    const std::time_t moved = startOn(day, start);
    if (moved > from) displaced.push_back(moved);
  }
  return displaced;
}

}  // namespace dormel::jobs
