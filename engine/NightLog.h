// The night log: "nights.json" in the record folder, one entry per night on which a lock began while somebody was at
// the computer. Records older than 90 days go whenever one is added.
//
// Runs on the session's serial queue; only `secondsSinceLastInput` belongs on the main thread. Failures are silent:
// an unreadable log counts as empty and is replaced by the next record.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Time.h"

namespace dormel {

struct NightRecord {
  std::string night;             ///< date of the evening on which the night began, "yyyy-MM-dd"
  std::string firedAt;           ///< when the lock began, ISO 8601 in UTC with milliseconds
  std::int64_t idleSeconds = 0;  ///< how long nobody had touched the computer then
  friend bool operator==(const NightRecord&, const NightRecord&) = default;
};

namespace NightLog {

struct Stored {
  std::vector<NightRecord> records;  ///< oldest first; those that could be decoded
  bool damaged = false;              ///< the log, or a record in it, could not be read
};

/// What the log holds now; nothing, undamaged, when there is none. Only looks. Any thread.
[[nodiscard]] Stored stored();

/// Adds the record of the night that `now` belongs to, unless it has one already or the user has been idle for more
/// than 300 s (`idle`, asked of the input devices when not given). True when a record was due, even if writing the
/// file failed.
bool recordDormelFired(Date now, std::optional<Seconds> idle);

/// Seconds since the most recent input of any watched kind; 0 when nothing is known. Main thread.
[[nodiscard]] Seconds secondsSinceLastInput();

/// The date of the evening on which the night of `date` began: today from the end hour on, else yesterday.
[[nodiscard]] std::string nightKey(Date date);

}  // namespace NightLog
}  // namespace dormel
