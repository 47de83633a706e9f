#include "engine/NightReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "platform/Texts.h"

namespace dormel::NightReport {
namespace {

using State = HistoryNight::State;

constexpr int DEFAULT_WIDTH = 80;
constexpr int LABEL_WIDTH = 4;         // "Mon "
constexpr int LEAST_WITH_LABELS = 12;  // below, the weeks need the room themselves
// No longer than three letters in any language.
constexpr std::array<const char*, 7> WEEKDAYS{translatable("Mon"), translatable("Tue"), translatable("Wed"),
                                              translatable("Thu"), translatable("Fri"), translatable("Sat"),
                                              translatable("Sun")};

constexpr const char* BOLD = "\033[1m";
constexpr const char* DIM = "\033[2m";
constexpr const char* PLAIN = "\033[0m";

/// A night as one character: opened ones by their number, so that nothing hangs on the highlighting.
std::string sign(const HistoryNight& night) {
  switch (night.state()) {
    case State::kept:
      return "■";
    case State::opened:
      return night.unlocks.size() > 9 ? "+" : std::to_string(night.unlocks.size());
    default:
      return "·";
  }
}

/// How many characters it is.
std::size_t length(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

/// "2026-11-16T23:41:07"
std::string stampText(HistoryNight::Stamp stamp) {
  const auto day = std::chrono::floor<std::chrono::days>(stamp);
  const std::chrono::hh_mm_ss time(stamp - day);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "T%02d:%02d:%02d", static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return dateText(day) + text.data();
}

class Page {
 public:
  Page(int width, bool highlights) : width_(std::max(width, 1)), highlights_(highlights) {}

  /// A paragraph, wrapped between words.
  void paragraph(std::string_view words) {
    std::string line;
    for (std::string_view rest = words; !rest.empty();) {
      const std::string_view word = rest.substr(0, rest.find(' '));
      rest.remove_prefix(std::min(word.size() + 1, rest.size()));
      if (!line.empty() && length(line) + 1 + length(word) > static_cast<std::size_t>(width_)) {
        put(line);
        line.clear();
      }
      if (!line.empty()) line += ' ';
      line += word;
    }
    put(line);
  }
  void gap() { put({}); }

  /// As many weeks side by side as there is room for; the newest ones in the last block.
  void grid(const NightHistory& history) {
    const int labels = width_ < LEAST_WITH_LABELS ? 0 : LABEL_WIDTH;
    const int fitting = std::max(1, (width_ - labels + 1) / 2);
    for (int from = 0; from < history.columns(); from += fitting) {
      if (from > 0) gap();
      block(history, from, std::min(from + fitting, history.columns()), labels);
    }
  }

  void legend() { paragraph(translate("■ kept, 2 opened twice, · no lock recorded")); }

  [[nodiscard]] std::string text() && {
    if (!text_.empty()) text_.pop_back();
    return std::move(text_);
  }

 private:
  void put(std::string_view line) { (text_ += line.substr(0, line.find_last_not_of(' ') + 1)) += '\n'; }

  void block(const NightHistory& history, int from, int to, int labels) {
    std::string months;
    for (const auto& [column, name] : history.months()) {
      if (column < from || column >= to) continue;
      const std::size_t at = static_cast<std::size_t>(labels) + 2 * static_cast<std::size_t>(column - from);
      if (at + length(name) > static_cast<std::size_t>(width_)) continue;
      months += std::string(at - std::min(at, length(months)), ' ') + name;
    }
    put(months);
    for (int day = 0; day < 7; ++day) {
      std::string line = labels > 0 ? translate(WEEKDAYS.at(static_cast<std::size_t>(day))) : std::string();
      line.append(static_cast<std::size_t>(labels) - std::min(static_cast<std::size_t>(labels), length(line)), ' ');
      for (int column = from; column < to; ++column) {
        const int night = 7 * column + day - history.nights.front().weekday();
        const bool isThere = night >= 0 && night < NightHistory::NIGHTS;
        line += isThere ? shown(history.nights[static_cast<std::size_t>(night)]) : " ";
        if (column + 1 < to) line += ' ';
      }
      put(line);
    }
  }

  [[nodiscard]] std::string shown(const HistoryNight& night) const {
    if (!highlights_ || night.state() == State::opened) return sign(night);
    return (night.state() == State::kept ? BOLD : DIM) + sign(night) + PLAIN;
  }

  int width_;
  bool highlights_;
  std::string text_;
};

}  // namespace

std::string text(const NightHistory& history, const std::optional<Terminal>& terminal, bool use24HourClock) {
  Page page(terminal ? terminal->columns : DEFAULT_WIDTH, terminal && terminal->highlights);
  if (history.empty()) {
    page.paragraph(translate(NO_NIGHTS));
    return std::move(page).text();
  }
  page.grid(history);
  page.gap();
  page.legend();
  page.gap();
  page.paragraph(translatePlural("%1 night kept in a row", "%1 nights kept in a row", history.keptInARow()));
  page.paragraph(translate("%1 of the last %2 nights kept",
                           {std::to_string(history.keptOfRecent()), std::to_string(NightHistory::RECENT)}));
  if (const auto minutes = history.medianIdleMinutes()) {
    page.paragraph(translate("%1 min from the last use to the lock (median)", {std::to_string(*minutes)}));
  }
  bool isFirst = true;
  for (const HistoryNight& night : history.nights) {
    if (night.state() != State::opened) continue;
    if (std::exchange(isFirst, false)) page.gap();
    page.paragraph(night.sentence(use24HourClock));
  }
  return std::move(page).text();
}

std::string json(const NightHistory& history) {
  nlohmann::ordered_json nights = nlohmann::ordered_json::array();
  for (const HistoryNight& night : history.nights) {
    constexpr std::array<const char*, 3> STATES{"unrecorded", "kept", "opened"};
    nlohmann::ordered_json one{{"night", dateText(night.evening)},
                               {"state", STATES.at(static_cast<std::size_t>(night.state()))},
                               {"over", night.isOver},
                               {"lockedAt", nullptr},
                               {"idleSeconds", nullptr},
                               {"unlocks", nlohmann::ordered_json::array()}};
    if (night.lock) {
      one["lockedAt"] = night.lock->firedAt;
      one["idleSeconds"] = night.lock->idleSeconds;
    }
    for (const HistoryNight::Stamp unlock : night.unlocks) one["unlocks"].push_back(stampText(unlock));
    nights.push_back(std::move(one));
  }
  const auto median = history.medianIdleSeconds();
  nlohmann::ordered_json all{{"nights", std::move(nights)},
                             {"keptInARow", history.keptInARow()},
                             {"keptOfLast30", history.keptOfRecent()},
                             {"medianIdleSeconds", nullptr},
                             {"damaged", history.damaged}};
  if (median) all["medianIdleSeconds"] = *median;
  return all.dump();
}

}  // namespace dormel::NightReport
