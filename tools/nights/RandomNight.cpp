#include "tools/nights/RandomNight.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

namespace dormel::nights {
namespace {

constexpr std::int64_t SECOND = 1000;
constexpr std::int64_t MINUTE = 60 * SECOND;
constexpr std::int64_t HOUR = 60 * MINUTE;

/// Answers how many seconds before the start hour it begins.
std::int64_t drawSchedule(RandomNight& night, Dice& dice) {
  if (dice.percent(85)) {
    night.startHour = static_cast<int>(dice.between(20, 26) % 24);
    night.endHour = 6;
  } else {
    night.startHour = static_cast<int>(dice.between(0, 23));
    night.endHour = static_cast<int>(dice.between(0, 23));
  }
  const std::int64_t hours = (night.endHour - night.startHour + 24) % 24;
  const auto day = std::chrono::sys_days(std::chrono::year(2026) / 1 / 1) + std::chrono::days(dice.between(0, 1500));
  // Most nights are watched at their ends, where the decisions fall; some from evening to morning.
  std::int64_t after = -dice.between(1, 90);  // seconds after the start hour
  if (dice.percent(25)) {
    night.length = hours * HOUR + 2 * MINUTE;
  } else if (hours > 0 && dice.percent(40)) {
    const std::int64_t before = dice.spread(1, 40) * 60;  // of the end
    after = hours * 3600 - before;
    night.length = before * SECOND + dice.between(15, 200) * SECOND;
  } else {
    night.length = dice.spread(1, 40) * MINUTE;
  }
  if (night.opened) night.length = std::min(night.length, 15 * MINUTE);
  night.begin = day + std::chrono::hours(night.startHour) + std::chrono::seconds(after);
  if (dice.percent(15)) {
    night.change = dice.percent(50) ? 60 : -60;
    night.changeAfter = dice.between(0, night.length) / HOUR * HOUR + (after < 0 ? -after * SECOND : 0);
  }
  return std::max<std::int64_t>(0, -after);
}

/// Somebody who cannot sleep: holds on, is free for five minutes, is locked again, holds on.
void drawSleepless(RandomNight& night, Dice& dice) {
  std::int64_t at = dice.between(20, 200) * SECOND;
  std::int64_t enough = 30 * SECOND;
  while (at < night.length) {
    const std::int64_t spacing = dice.spread(5, 400);
    const std::int64_t held = enough + dice.between(60, 2500);
    night.happenings.push_back({at, Kind::hold, {held, spacing, dice.between(0, 1023)}});
    at += 4 * spacing + held + 300 * SECOND + dice.spread(1, 120) * SECOND;
    enough = 60 * SECOND;
  }
}

/// Somebody who goes through the whole test run, or nearly.
void drawRehearsal(RandomNight& night, Dice& dice) {
  std::int64_t at = dice.between(5, 60) * SECOND;
  night.happenings.push_back({at, Kind::test, {}});
  at += dice.spread(100, 20 * SECOND);
  const std::int64_t spacing = dice.spread(5, 400);
  const std::int64_t held = 5 * SECOND + dice.between(60, 2500);
  night.happenings.push_back({at, Kind::hold, {held, spacing, dice.between(0, 1023)}});
  at += 4 * spacing + held + 10 * SECOND + dice.spread(100, 20 * SECOND);
  night.happenings.push_back({at, Kind::hold, {12 * SECOND + dice.between(60, 2500), spacing, dice.between(0, 1023)}});
}

/// Dice of its own: what else happens in a night does not depend on it.
void drawDesktop(RandomNight& night) {
  using Desktop = SimCompositor::Desktop;
  Dice dice(night.seed ^ 0x5DEECE66DU);
  if (dice.percent(35)) return;
  const std::int64_t kind = dice.between(0, 99);
  night.desktop = kind < 45 ? Desktop::sessionLock : kind < 65 ? Desktop::overlay : Desktop::shell;
  for (std::int64_t count = dice.between(0, 6); count > 0; --count) {
    // Mostly around something else: a hold, a sleep, the end of the hours.
    std::int64_t at = dice.between(0, night.length);
    if (!night.happenings.empty() && dice.percent(50)) {
      const auto last = static_cast<std::int64_t>(night.happenings.size()) - 1;
      at = night.happenings.at(static_cast<std::size_t>(dice.between(0, last))).at + dice.spread(1, 20 * SECOND);
    } else if (dice.percent(30)) {
      at = dice.percent(50) ? dice.between(0, 30 * SECOND) : night.length - dice.between(0, 220 * SECOND);
    }
    const auto drawn = night.desktop == Desktop::shell ? drawnGnomeHappening : drawnWaylandHappening;
    night.happenings.push_back(drawn(dice, std::clamp<std::int64_t>(at, 0, night.length)));
  }
}

}  // namespace

std::string momentText(std::chrono::sys_seconds moment) {
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(moment - day);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text.data();
}

RandomNight RandomNight::drawn(std::uint64_t seed) {
  Dice dice(seed);
  RandomNight night;
  night.seed = seed;
  night.opened = dice.percent(10);
  const std::int64_t secondsToStart = drawSchedule(night, dice);
  night.enabled = dice.percent(96);
  night.onboarded = dice.percent(97);
  night.debugLog = dice.percent(4);
  if (dice.percent(40)) night.clock24 = dice.percent(50);
  night.trusted = dice.percent(90);
  night.sidesReported = dice.percent(90);
  night.screens = static_cast<int>(dice.percent(4) ? 0 : dice.between(1, 3));
  if (dice.percent(85)) night.idleSeconds = dice.percent(70) ? dice.between(0, 290) : dice.between(290, 400);
  if (dice.percent(5)) night.idleSeconds = 300 - secondsToStart;  // exactly at the limit when the lock begins
  night.records = static_cast<Records>(dice.between(0, 3));
  night.hasUnlockLog = dice.percent(50);

  if (dice.percent(40)) (night.opened ? drawRehearsal : drawSleepless)(night, dice);
  const std::int64_t count = dice.percent(20) ? dice.between(0, 3) : dice.spread(1, 60);
  for (std::int64_t i = 0; i < count; ++i) {
    std::int64_t at = dice.between(0, night.length);
    if (!night.happenings.empty() && dice.percent(50)) {
      // Troubles come together, and the more so around a hold, its end, and the end of what it bought.
      const auto& near = night.happenings.at(
          static_cast<std::size_t>(dice.between(0, static_cast<std::int64_t>(night.happenings.size()) - 1)));
      constexpr std::array<std::int64_t, 6> LATER{0, 0, 30, 60, 330, 360};
      at = near.at + LATER.at(static_cast<std::size_t>(dice.between(0, 5))) * SECOND + dice.spread(1, 20 * SECOND) -
           dice.spread(1, 5 * SECOND);
    } else if (dice.percent(30)) {
      at = dice.percent(50) ? dice.between(0, 100 * SECOND) : night.length - dice.between(0, 220 * SECOND);
    }
    night.happenings.push_back(drawnHappening(dice, std::clamp<std::int64_t>(at, 0, night.length), night.opened));
  }
  drawDesktop(night);
  std::stable_sort(night.happenings.begin(), night.happenings.end());
  return night;
}

std::string RandomNight::text() const {
  std::ostringstream line;
  constexpr std::array<const char*, 4> DESKTOPS{"", "a session lock, ", "an overlay, ", "GNOME's shell, "};
  constexpr std::array<const char*, 4> RECORDS{"no", "a few", "old", "malformed"};
  line << (opened ? "opened " : "") << momentText(begin) << ", hours " << startHour << " to " << endHour << ", "
       << screens << " screens, " << DESKTOPS.at(static_cast<std::size_t>(desktop)) << (enabled ? "" : "switched off, ")
       << (onboarded ? "" : "not set up, ") << (trusted ? "" : "no permission, ") << (sidesReported ? "" : "no sides, ")
       << (debugLog ? "debug log, " : "") << RECORDS.at(static_cast<std::size_t>(records)) << " records, idle ";
  if (idleSeconds) {
    line << *idleSeconds << " s";
  } else {
    line << "unknown";
  }
  if (changeAfter) line << ", clocks change by " << change << " min after " << *changeAfter / 1000 << " s";
  line << ", watched for " << length / 1000 << " s";
  return line.str();
}

}  // namespace dormel::nights
