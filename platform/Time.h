// The two clocks and the calendar.
//
// Wall-clock time (`Date`) decides the blocking hours and what is displayed; uptime measures holds and
// intervals. The two are different types so that neither can be used in the other's place: the user may set
// the wall clock back by an hour while a hold runs, and the hold must not notice.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace dormel {

/// A moment of wall-clock time (UTC underneath, microseconds kept).
using Date = std::chrono::sys_time<std::chrono::microseconds>;

/// Seconds of monotonic uptime or of an interval.
using Seconds = double;

/// A moment taken apart in the user's calendar and time zone.
struct LocalTime {
  int year = 1970;
  int month = 1;  ///< 1 to 12
  int day = 1;    ///< 1 to 31
  int hour = 0;   ///< 0 to 23
  int minute = 0;
  int second = 0;
  int millisecond = 0;
};

/// Both clocks. Any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The wall clock. May jump either way at any time.
  [[nodiscard]] virtual Date now() const = 0;

  /// Monotonic seconds since some fixed moment of this boot. Never goes back; need not advance during sleep.
  [[nodiscard]] virtual Seconds uptime() const = 0;
};

/// The user's current calendar, time zone and locale, looked up afresh on every call. Any thread.
class Calendar {
 public:
  virtual ~Calendar() = default;

  /// `date` in the user's time zone, in the Gregorian calendar.
  [[nodiscard]] virtual LocalTime localTime(Date date) const = 0;

  /// The same time of day `days` calendar days later (earlier if negative), daylight saving respected;
  /// nothing when the calendar has no such moment.
  [[nodiscard]] virtual std::optional<Date> addingDays(Date date, int days) const = 0;

  /// The locale's pattern for "the hour as this user writes it", in CLDR letters: "HH", "h a" and the like.
  /// Nothing when the locale has none.
  [[nodiscard]] virtual std::optional<std::string> hourPattern() const = 0;
};

}  // namespace dormel
