// Every visible effect of a simulated machine, in order, one short line each, led by the local time of day:
// "22:00:00.000 presentation 378". A test compares the whole, so that an effect too many fails as surely as a
// missing one.
#pragma once

#include <cstdint>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/Time.h"

namespace dormel {

class SimJournal {
 public:
  /// `stamp` answers the present time of day.
  explicit SimJournal(std::function<std::string()> stamp) : stamp_(std::move(stamp)) {}

  /// Off: nothing is kept, and no text is built.
  void setEnabled(bool enabled) { enabled_ = enabled; }
  [[nodiscard]] bool enabled() const { return enabled_ && !muted_; }
  /// While muted nothing is kept either: what objects of a process that has ended still do on their way out.
  void setMuted(bool muted) { muted_ = muted; }

  /// Adds the line that the parts make, put one after the other.
  template <typename... Parts>
  void note(const Parts&... parts) {
    ++effects_;
    if (!enabled()) return;
    std::ostringstream line;
    line << stamp_() << ' ';
    (line << ... << parts);
    lines_.push_back(line.str());
  }

  [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }
  /// All lines, each ended by a line feed.
  [[nodiscard]] std::string text() const {
    std::string all;
    for (const std::string& line : lines_) all += line + "\n";
    return all;
  }
  void clear() { lines_.clear(); }

  /// How many effects there ever were, kept or not: who watches the machine looks again when it has grown.
  [[nodiscard]] std::uint64_t effects() const { return effects_; }

 private:
  std::function<std::string()> stamp_;
  std::vector<std::string> lines_;
  std::uint64_t effects_ = 0;
  bool enabled_ = true;
  bool muted_ = false;
};

}  // namespace dormel
