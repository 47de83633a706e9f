#include "core/Config.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "platform/Defaults.h"
#include "platform/Files.h"
#include "platform/Platform.h"

namespace dormel {
namespace {

constexpr std::array SELECTABLE_START_HOURS{20, 21, 22, 23, 0, 1, 2};

int storedHour(const char* key, int whenAbsent) {
  return static_cast<int>(platform().defaults.integer(key).value_or(whenAbsent));
}

bool storedFlag(const char* key, bool whenAbsent) { return platform().defaults.boolean(key).value_or(whenAbsent); }

bool isBlocked(int hour, int start, int end) {
  if (start == end) return false;
  if (start < end) return start <= hour && hour < end;
  return hour >= start || hour < end;
}

}  // namespace

namespace Config {

std::span<const int> selectableStartHours() { return SELECTABLE_START_HOURS; }

int startHour() { return storedHour(defaultsKey::blockStartHour, 0); }

int endHour() { return storedHour(defaultsKey::blockEndHour, 6); }

bool blockingEnabled() { return storedFlag(defaultsKey::blockingEnabled, true); }

bool onboardingComplete() { return storedFlag(defaultsKey::onboardingComplete, false); }

bool use24HourClock() {
  const auto stored = platform().defaults.boolean(defaultsKey::use24HourClock);
  return stored ? *stored : systemPrefers24HourClock();
}

bool systemPrefers24HourClock() {
  return platform().calendar.hourPattern().value_or("h").find('a') == std::string::npos;
}

void seedClockFormatFromSystem() {
  DefaultsStore& defaults = platform().defaults;
  if (defaults.boolean(defaultsKey::use24HourClock)) return;
  defaults.set(defaultsKey::use24HourClock, {systemPrefers24HourClock()});
}

bool isBlockingNow(Date date) { return isBlockingHour(platform().calendar.localTime(date).hour); }

bool isBlockingHour(int hour) { return isBlocked(hour, startHour(), endHour()); }

Seconds blockingTimeLeft(Date date) {
  const int start = startHour();
  const int end = endHour();
  Date hour = date;
  // A day of twenty-five hours has no more than that; the hours on the way may be of any length.
  for (int i = 0; i < 25; ++i) {
    const LocalTime time = platform().calendar.localTime(hour);
    if (!isBlocked(time.hour, start, end)) break;
    hour = std::chrono::floor<std::chrono::seconds>(hour) + std::chrono::minutes(60 - time.minute) -
           std::chrono::seconds(time.second);
  }
  return std::chrono::duration<Seconds>(hour - date).count();
}

std::vector<int> startHourOptions(int hour) {
  std::vector<int> hours(SELECTABLE_START_HOURS.begin(), SELECTABLE_START_HOURS.end());
  if (std::find(hours.begin(), hours.end(), hour) != hours.end()) return hours;
  hours.push_back(hour);
  const auto eveningKey = [](int h) { return h < 12 ? h : h - 24; };
  std::stable_sort(hours.begin(), hours.end(), [&](int a, int b) { return eveningKey(a) < eveningKey(b); });
  return hours;
}

std::string logDirectory() { return platform().files.homeDirectory() + "/Library/Logs/Dormel"; }

std::string stdoutLogPath() { return logDirectory() + "/dormel.log"; }

std::string unlockLogPath() { return logDirectory() + "/dormel-unlock.log"; }

bool ensureLogDirectory() { return !platform().files.createDirectories(logDirectory(), 0777); }

}  // namespace Config

std::string nightHourLabel(int hour) {
  const int day = ((hour % 24) + 24) % 24;
  const int figure = day % 12 == 0 ? 12 : day % 12;
  return std::to_string(figure) + (day < 12 ? " AM" : " PM");
}

std::string hourLabel(int hour) {
  const int figure = hour % 12 == 0 ? 12 : hour % 12;
  return std::to_string(figure) + ":00 " + (hour < 12 ? "AM" : "PM");
}

}  // namespace dormel
