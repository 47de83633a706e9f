#include "engine/NightHistory.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <map>
#include <string_view>

#include "core/Config.h"
#include "engine/NightLog.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {
namespace {

using namespace std::chrono;
using Stamp = HistoryNight::Stamp;
using Evenings = std::map<local_days, HistoryNight>;

/// From the earliest start hour that is offered to noon: nobody is locked in for longer.
constexpr hours LONGEST_LOCK{16};
constexpr int NOON = 12;

constexpr std::array<const char*, 7> WEEKDAYS{
    translatable("Monday"), translatable("Tuesday"),  translatable("Wednesday"), translatable("Thursday"),
    translatable("Friday"), translatable("Saturday"), translatable("Sunday")};
constexpr std::array<const char*, 12> MONTHS{
    translatable("January"),   translatable("February"), translatable("March"),    translatable("April"),
    translatable("May"),       translatable("June"),     translatable("July"),     translatable("August"),
    translatable("September"), translatable("October"),  translatable("November"), translatable("December")};
constexpr std::array<const char*, 12> SHORT_MONTHS{translatable("Jan"), translatable("Feb"), translatable("Mar"),
                                                   translatable("Apr"), translatable("May"), translatable("Jun"),
                                                   translatable("Jul"), translatable("Aug"), translatable("Sep"),
                                                   translatable("Oct"), translatable("Nov"), translatable("Dec")};

/// A number that fills `text`.
std::optional<unsigned> number(std::string_view text) {
  unsigned value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return {};
  return value;
}

/// "2026-11-16"
std::optional<local_days> parsedDay(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return {};
  const auto y = number(text.substr(0, 4));
  const auto m = number(text.substr(5, 2));
  const auto d = number(text.substr(8, 2));
  if (!y || !m || !d) return {};
  const year_month_day date{year(static_cast<int>(*y)), month(*m), day(*d)};
  if (!date.ok()) return {};
  return local_days(date);
}

/// "23:41:07"
std::optional<seconds> parsedTime(std::string_view text) {
  if (text.size() != 8 || text[2] != ':' || text[5] != ':') return {};
  const auto h = number(text.substr(0, 2));
  const auto m = number(text.substr(3, 2));
  const auto s = number(text.substr(6, 2));
  if (!h || !m || !s || *h > 23 || *m > 59 || *s > 60) return {};
  return hours(*h) + minutes(*m) + seconds(*s);
}

Stamp local(Date date) {
  const LocalTime t = platform().calendar.localTime(date);
  const year_month_day day{year(t.year), month(static_cast<unsigned>(t.month)),
                           std::chrono::day(static_cast<unsigned>(t.day))};
  return local_days(day) + hours(t.hour) + minutes(t.minute) + seconds(t.second);
}

/// "2026-11-16T21:00:04.512Z"
std::optional<Stamp> parsedMoment(std::string_view text) {
  if (text.size() != 24 || text[10] != 'T' || text[19] != '.' || text[23] != 'Z' || !number(text.substr(20, 3))) {
    return {};
  }
  const auto day = parsedDay(text.substr(0, 10));
  const auto time = parsedTime(text.substr(11, 8));
  if (!day || !time) return {};
  return local(Date(day->time_since_epoch() + *time));
}

/// "2026-11-16 23:41:07 — unlocked (#1, held 30s)"
std::optional<Stamp> parsedUnlock(std::string_view line) {
  constexpr std::string_view NUMBER = " — unlocked (#";
  constexpr std::string_view HELD = ", held ";
  constexpr std::string_view END = "s)";
  if (line.size() < 19 || line[10] != ' ' || !line.ends_with(END)) return {};
  const auto day = parsedDay(line.substr(0, 10));
  const auto time = parsedTime(line.substr(11, 8));
  std::string_view rest = line.substr(19);
  if (!day || !time || !rest.starts_with(NUMBER)) return {};
  rest = rest.substr(NUMBER.size(), rest.size() - NUMBER.size() - END.size());
  const std::size_t held = rest.find(HELD);
  if (held == std::string_view::npos || !number(rest.substr(0, held)) || !number(rest.substr(held + HELD.size()))) {
    return {};
  }
  return *day + *time;
}

int hourOf(Stamp stamp) { return static_cast<int>((stamp - floor<days>(stamp)) / hours(1)); }

/// The evening of an unlock. The log does not name it, and the hours may have been others then.
local_days eveningOf(Stamp unlock, const Evenings& evenings) {
  const local_days today = floor<days>(unlock);
  const int hour = hourOf(unlock);
  if (Config::isBlockingHour(hour)) return hour >= Config::endHour() ? today : today - days(1);
  // At such an hour nothing is locked any more, so the lock that was opened tells more than the present hours.
  for (const local_days evening : {today, today - days(1)}) {
    const auto night = evenings.find(evening);
    if (night == evenings.end() || !night->second.lock) continue;
    const Stamp lockedAt = night->second.lock->at;
    if (lockedAt <= unlock && unlock - lockedAt < LONGEST_LOCK) return evening;
  }
  return hour >= NOON ? today : today - days(1);
}

/// False when something in the log could not be understood.
bool readLocks(Evenings& evenings) {
  const NightLog::Stored stored = NightLog::stored();
  bool whole = !stored.damaged;
  for (const NightRecord& record : stored.records) {
    const auto evening = parsedDay(record.night);
    const auto at = parsedMoment(record.firedAt);
    if (!evening || !at || record.idleSeconds < 0) {
      whole = false;
      continue;
    }
    HistoryNight& night = evenings[*evening];
    if (!night.lock) night.lock = {*at, record.firedAt, record.idleSeconds};
  }
  return whole;
}

bool readUnlocks(Evenings& evenings) {
  const Files& files = platform().files;
  const std::string path = Config::unlockLogPath();
  const auto log = files.read(path);
  if (!log) return !files.exists(path);
  bool whole = true;
  for (std::string_view rest = *log; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (const auto unlock = parsedUnlock(line)) {
      evenings[eveningOf(*unlock, evenings)].unlocks.push_back(*unlock);
    } else {
      whole = false;
    }
  }
  return whole;
}

std::string clockText(Stamp stamp, bool use24HourClock) {
  const int hour = hourOf(stamp);
  const auto minute = static_cast<int>((stamp - floor<hours>(stamp)) / minutes(1));
  std::array<char, 32> text{};
  if (use24HourClock) {
    std::snprintf(text.data(), text.size(), "%02d:%02d", hour, minute);
  } else {
    std::snprintf(text.data(), text.size(), "%d:%02d %s", (hour + 11) % 12 + 1, minute, hour < 12 ? "AM" : "PM");
  }
  return text.data();
}

/// "once at 23:41", "3 times, at 23:41, 00:15 and 01:02"
std::string unlockText(const std::vector<Stamp>& unlocks, bool use24HourClock) {
  const std::size_t count = unlocks.size();
  std::string times = clockText(unlocks.front(), use24HourClock);
  for (std::size_t i = 1; i + 1 < count; ++i) times += ", " + clockText(unlocks[i], use24HourClock);
  if (count == 1) return translate("once at %1", {times});
  times = translate("%1 and %2", {times, clockText(unlocks.back(), use24HourClock)});
  if (count == 2) return translate("twice, at %1", {times});
  return translate("%1 times, at %2", {std::to_string(count), times});
}

/// The nights that are decided, newest first.
auto decided(const std::vector<HistoryNight>& nights) {
  const bool isOpen = !nights.back().isOver && nights.back().state() != HistoryNight::State::opened;
  return std::pair(nights.rbegin() + (isOpen ? 1 : 0), nights.rend());
}

bool isKept(const HistoryNight& night) { return night.state() == HistoryNight::State::kept; }

}  // namespace

std::string dateText(local_days day) {
  const year_month_day date(day);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return text.data();
}

HistoryNight::State HistoryNight::state() const {
  if (!unlocks.empty()) return State::opened;
  return lock ? State::kept : State::unrecorded;
}

std::string HistoryNight::sentence(bool use24HourClock) const {
  const year_month_day date(evening);
  const std::string locked = lock ? clockText(lock->at, use24HourClock) : std::string();
  std::string story = translate("no lock recorded");
  if (state() == State::kept) story = translate("locked at %1, not opened", {locked});
  if (state() == State::opened) {
    const std::string opened = unlockText(unlocks, use24HourClock);
    story = lock ? translate("locked at %1, opened %2", {locked, opened}) : translate("opened %1", {opened});
  }
  const std::string text =
      translate("%1, %2 %3: %4", {translate(WEEKDAYS.at(static_cast<std::size_t>(weekday()))),
                                  std::to_string(static_cast<unsigned>(date.day())),
                                  translate(MONTHS.at(static_cast<unsigned>(date.month()) - 1)), story});
  return isOver ? text : translate("%1 so far", {text});
}

int HistoryNight::weekday() const { return static_cast<int>(std::chrono::weekday(evening).iso_encoding()) - 1; }

NightHistory NightHistory::read(Date now) {
  NightHistory history;
  Evenings evenings;
  const bool locksAreWhole = readLocks(evenings);
  const bool unlocksAreWhole = readUnlocks(evenings);
  history.damaged = !locksAreWhole || !unlocksAreWhole;

  local_days last = parsedDay(NightLog::nightKey(now)).value_or(floor<days>(local(now)));
  const bool isOn = Config::isBlockingNow(now);
  // By day there is no night of that evening yet, unless the clock was set back behind it.
  if (!isOn && !evenings.contains(last)) last -= days(1);
  for (local_days evening = last - days(NIGHTS - 1); evening <= last; evening += days(1)) {
    HistoryNight& night = evenings[evening];
    night.evening = evening;
    night.isOver = evening != last || !isOn;
    std::sort(night.unlocks.begin(), night.unlocks.end());
    history.nights.push_back(std::move(night));
  }
  return history;
}

bool NightHistory::empty() const {
  return std::all_of(nights.begin(), nights.end(),
                     [](const HistoryNight& night) { return night.state() == HistoryNight::State::unrecorded; });
}

int NightHistory::keptInARow() const {
  const auto [begin, end] = decided(nights);
  return static_cast<int>(std::find_if_not(begin, end, isKept) - begin);
}

int NightHistory::keptOfRecent() const {
  const auto begin = decided(nights).first;
  return static_cast<int>(std::count_if(begin, begin + RECENT, isKept));
}

std::optional<double> NightHistory::medianIdleSeconds() const {
  std::vector<std::int64_t> idle;
  for (const HistoryNight& night : nights) {
    if (night.lock) idle.push_back(night.lock->idleSeconds);
  }
  if (idle.empty()) return {};
  std::sort(idle.begin(), idle.end());
  const auto upper = static_cast<double>(idle[idle.size() / 2]);
  return (static_cast<double>(idle[(idle.size() - 1) / 2]) + upper) / 2;
}

std::optional<int> NightHistory::medianIdleMinutes() const {
  const auto median = medianIdleSeconds();
  if (!median) return {};
  return static_cast<int>(std::lround(*median / 60));
}

std::vector<std::pair<int, std::string>> NightHistory::months() const {
  std::vector<std::pair<int, std::string>> found;
  for (std::size_t i = 0; i < nights.size(); ++i) {
    const year_month_day date(nights[i].evening);
    if (i > 0 && date.day() != day(1)) continue;
    const int at = column(i);
    if (!found.empty() && at - found.back().first < 2) found.pop_back();
    found.emplace_back(at, translate(SHORT_MONTHS.at(static_cast<unsigned>(date.month()) - 1)));
  }
  return found;
}

}  // namespace dormel
