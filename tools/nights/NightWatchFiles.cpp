// What the watch holds the files to.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "core/AppSupport.h"
#include "core/Config.h"
#include "tools/nights/NightWatch.h"

namespace dormel::nights {
namespace {

using Days = std::chrono::sys_days;

std::string utcTimeText(Date date) {
  const auto ms =
      std::chrono::floor<std::chrono::milliseconds>(date - std::chrono::floor<Days::duration>(date)).count();
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "T%02d:%02d:%02d.%03dZ", static_cast<int>(ms / 3600000),
                static_cast<int>(ms / 60000 % 60), static_cast<int>(ms / 1000 % 60), static_cast<int>(ms % 1000));
  return text.data();
}

}  // namespace

std::string NightWatch::dayText(Days day) {
  const std::chrono::year_month_day date(day);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return text.data();
}

std::vector<NightWatch::Record> NightWatch::decoded(const std::string& content) {
  std::vector<Record> found;
  try {
    for (const auto& json : nlohmann::json::parse(content)) {
      found.push_back({json.at("night"), json.at("firedAt"), json.at("idleSeconds")});
    }
  } catch (const std::exception&) {
    found.clear();
  }
  return found;
}

void NightWatch::knowFiles() {
  unlockLogBefore_ = unlockLog_ = machine_.files.content(Config::unlockLogPath());
  recordFile_ = machine_.files.content(AppSupport::url("nights.json"));
  records_ = decoded(recordFile_);
}

void NightWatch::checkFiles() {
  const std::size_t unlocks = seenUnlocks_.size();
  const std::string records = recordFile_;
  checkUnlockLog();
  checkRecords();
  if (seenUnlocks_.size() != unlocks || recordFile_ != records) checkHistory();
}

void NightWatch::checkUnlockLog() {
  const std::string content = machine_.files.content(Config::unlockLogPath());
  if (content != unlockLog_) {
    if (!content.starts_with(unlockLog_)) fail(Rule::unlockLog, "old lines changed");
    std::string rest = content.substr(std::min(unlockLog_.size(), content.size()));
    unlockLog_ = content;
    while (!rest.empty()) {
      while (!dueLines_.empty() && !dueLines_.front().isDue && !rest.starts_with(dueLines_.front().text)) {
        dueLines_.pop_front();
      }
      if (dueLines_.empty() || !rest.starts_with(dueLines_.front().text)) {
        fail(Rule::unlockLog, "an unexpected line: " + rest);
        return;
      }
      rest.erase(0, dueLines_.front().text.size());
      seenUnlocks_.push_back(std::move(dueLines_.front().unlock));
      dueLines_.pop_front();
    }
  }
  if (!dueLines_.empty() && dueLines_.front().isDue && lateByUptime(dueLines_.front().at, 0.1)) {
    fail(Rule::unlockLog, "missing: " + dueLines_.front().text);
  }
}

void NightWatch::expectRecord() {
  std::optional<Seconds> idle;
  for (const InputKind kind : {InputKind::scrollWheel, InputKind::rightMouseDown, InputKind::leftMouseDown,
                               InputKind::mouseMoved, InputKind::keyDown}) {
    const Seconds seconds = machine_.keyboard.secondsSinceLast(kind);
    if (std::isfinite(seconds) && seconds >= 0) idle = std::min(idle.value_or(seconds), seconds);
  }
  dueRecord_.reset();
  if (idle.value_or(0) > 300) return;
  const Date date = machine_.timeline.now();
  const LocalTime local = machine_.calendar.localTime(date);
  const Days today = std::chrono::year(local.year) / local.month / local.day;
  const Days night = local.hour >= storedHour(defaultsKey::blockEndHour, 6) ? today : today - std::chrono::days(1);
  const Days utcDay = std::chrono::floor<Days::duration>(date);
  Record record{dayText(night), dayText(utcDay) + utcTimeText(date), static_cast<std::int64_t>(idle.value_or(0))};
  const bool isNew =
      std::none_of(records_.begin(), records_.end(), [&](const Record& other) { return other.night == record.night; });
  // One that the night has already may still come: where the old ones cannot be read at that moment.
  dueRecord_ = {std::move(record), dayText(today - std::chrono::days(90)), now(), isNew && troubles_ == 0};
}

void NightWatch::checkRecords() {
  std::string content = machine_.files.content(AppSupport::url("nights.json"));
  if (content != recordFile_) {
    std::vector<Record> found = decoded(content);
    const auto isRight = [&](std::vector<Record> expected) {
      if (!dueRecord_) return false;
      Record added = dueRecord_->record;
      // A task that had to wait may see other hours than the lock did.
      if (!dueRecord_->isDue && !found.empty()) added.night = found.back().night;
      if (std::any_of(expected.begin(), expected.end(), [&](const Record& r) { return r.night == added.night; })) {
        return false;
      }
      expected.push_back(added);
      std::erase_if(expected, [&](const Record& r) { return r.night < dueRecord_->oldest; });
      return found == expected;
    };
    if (!isRight(records_) && !(unreadable_ && isRight({}))) fail(Rule::records, content);
    records_ = std::move(found);
    recordFile_ = std::move(content);
    dueRecord_.reset();
  }
  if (dueRecord_ && dueRecord_->isDue && lateByUptime(dueRecord_->at, 0.1)) fail(Rule::records, "missing");
}

}  // namespace dormel::nights
