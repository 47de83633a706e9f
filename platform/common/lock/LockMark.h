// The record of a session lock: whose it is and at which compositor. A lock outlives its client, and only a client can
// end it: whoever finds the mark of one that died has to take the lock over. Plain values.
#pragma once

#include <optional>
#include <sstream>
#include <string>

namespace dormel {

/// A process, told from a later one of the same number by when it was started.
struct ProcessMark {
  int pid = 0;
  unsigned long long startedAt = 0;  ///< clock ticks since boot; 0: not known
  friend bool operator==(const ProcessMark&, const ProcessMark&) = default;
};

struct LockMark {
  ProcessMark owner;
  ProcessMark compositor;
  friend bool operator==(const LockMark&, const LockMark&) = default;

  [[nodiscard]] std::string text() const {
    std::ostringstream text;
    text << owner.pid << ' ' << owner.startedAt << ' ' << compositor.pid << ' ' << compositor.startedAt << '\n';
    return text.str();
  }
  [[nodiscard]] static std::optional<LockMark> parse(const std::string& text) {
    LockMark mark;
    std::istringstream words(text);
    words >> mark.owner.pid >> mark.owner.startedAt >> mark.compositor.pid >> mark.compositor.startedAt;
    if (words.fail() || mark.owner.pid <= 0) return std::nullopt;
    return mark;
  }
};

}  // namespace dormel
