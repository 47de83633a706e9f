// The simulated machine's clocks and calendar.
#pragma once

#include <map>
#include <string_view>
#include <utility>

#include "platform/Time.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimClock : public Clock {
 public:
  explicit SimClock(const SimTimeline& timeline) : timeline_(timeline) {}
  [[nodiscard]] Date now() const override { return timeline_.now(); }
  [[nodiscard]] Seconds uptime() const override { return timeline_.uptime(); }

 private:
  const SimTimeline& timeline_;
};

/// A time zone made of an offset and the moments at which it changes.
class SimCalendar : public Calendar {
 public:
  using Offset = std::chrono::minutes;

  [[nodiscard]] LocalTime localTime(Date date) const override;
  [[nodiscard]] std::optional<Date> addingDays(Date date, int days) const override;
  [[nodiscard]] std::optional<std::string> hourPattern() const override { return hourPattern_; }

  /// East of UTC, from the beginning of time.
  void setOffset(Offset offset) { base_ = offset; }
  /// From `at` (UTC, "2026-03-29 01:00:00") on, the zone is `offset` east of UTC.
  void addTransition(std::string_view at, Offset offset) { transitions_[moment(at, Offset(0))] = offset; }
  void setHourPattern(std::optional<std::string> pattern) { hourPattern_ = std::move(pattern); }

  /// The moment at which local clocks show `text` ("2026-11-16 22:00:00"): of two, the first; of none (they were
  /// put forward over it), the one that the clocks would show had they not been.
  [[nodiscard]] Date at(std::string_view text) const;
  /// The first moment after `date` at which local clocks show that hour and minute.
  [[nodiscard]] Date next(int hour, int minute, Date date) const;

 private:
  [[nodiscard]] static Date moment(std::string_view text, Offset offset);
  [[nodiscard]] Offset offsetAt(Date date) const;
  [[nodiscard]] Date fromLocal(std::chrono::local_time<std::chrono::microseconds> local) const;

  Offset base_{60};
  std::map<Date, Offset> transitions_;
  std::optional<std::string> hourPattern_ = "HH";
};

}  // namespace dormel
