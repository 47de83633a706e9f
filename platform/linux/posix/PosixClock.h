// Clock and calendar of the running system. Any thread.
#pragma once

#include "platform/Time.h"

namespace dormel::posix {

class PosixClock final : public Clock {
 public:
  [[nodiscard]] Date now() const override;
  [[nodiscard]] Seconds uptime() const override;  ///< CLOCK_MONOTONIC: stands still during sleep
};

/// The process's time zone (TZ, /etc/localtime) and LC_TIME.
class PosixCalendar final : public Calendar {
 public:
  [[nodiscard]] LocalTime localTime(Date date) const override;
  [[nodiscard]] std::optional<Date> addingDays(Date date, int days) const override;
  [[nodiscard]] std::optional<std::string> hourPattern() const override;
};

}  // namespace dormel::posix
