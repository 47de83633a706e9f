// What the watch holds the history of the nights to: what `--nights=json` says, against what was seen.
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "core/Config.h"
#include "engine/NightReport.h"
#include "tools/nights/NightWatch.h"

namespace dormel::nights {
namespace {

using Days = std::chrono::sys_days;
using Json = nlohmann::json;

struct Told {
  std::string lockedAt;  // empty: none
  std::int64_t idleSeconds = 0;
  std::multiset<std::string> unlocks;

  [[nodiscard]] bool isAnything() const { return !lockedAt.empty() || !unlocks.empty(); }
  [[nodiscard]] bool isKept() const { return !lockedAt.empty() && unlocks.empty(); }
  friend bool operator==(const Told&, const Told&) = default;
};
using Account = std::map<std::string, Told>;  // by the evening

/// What the page says; it says nothing of a night by leaving it out of the account.
Account accountOf(const Json& page) {
  Account account;
  for (const Json& night : page.at("nights")) {
    Told told;
    if (!night.at("lockedAt").is_null()) told = {night.at("lockedAt"), night.at("idleSeconds"), {}};
    for (const Json& unlock : night.at("unlocks")) told.unlocks.insert(unlock.get<std::string>());
    const char* state = told.isKept() ? "kept" : told.isAnything() ? "opened" : "unrecorded";
    if (night.at("state") != state) throw std::logic_error("a night that is not " + night.at("state").dump());
    if (told.isAnything()) account[night.at("night")] = std::move(told);
  }
  return account;
}

}  // namespace

void NightWatch::checkHistory() {
  // What cannot be read just now cannot be told.
  if (fault_ || troubles_ > 0) return;
  const Date date = machine_.timeline.now();
  const LocalTime local = machine_.calendar.localTime(date);
  const int endHour = storedHour(defaultsKey::blockEndHour, 6);
  const int startHour = storedHour(defaultsKey::blockStartHour, 0);
  const Days today = std::chrono::year(local.year) / local.month / local.day;
  const Days present = local.hour >= endHour ? today : today - std::chrono::days(1);

  const Json page = Json::parse(NightReport::json(NightHistory::read(date)));
  const Account told = accountOf(page);

  std::vector<std::string> listed;
  for (const Json& night : page.at("nights")) listed.push_back(night.at("night"));
  const auto isListed = [&](const std::string& night) {
    return std::find(listed.begin(), listed.end(), night) != listed.end();
  };
  const auto isTold = [&](const std::string& night, const std::string& stamp) {
    const auto at = told.find(night);
    return at != told.end() && at->second.unlocks.contains(stamp);
  };

  Account seen;
  for (const Record& record : records_) {
    if (!seen.contains(record.night)) seen[record.night] = {record.firedAt, record.idleSeconds, {}};
  }
  for (const SeenUnlock& unlock : seenUnlocks_) {
    const bool isSure = unlock.hoursOn && unlock.startHour == startHour && unlock.endHour == endHour;
    // Under other hours than the present ones it may be told on the other evening beside it, or go with it where a
    // clock that was set back left that one ahead.
    const bool isElsewhere = isTold(unlock.otherNight, unlock.stamp) ||
                             (!isListed(unlock.otherNight) && !isTold(unlock.night, unlock.stamp));
    seen[!isSure && isElsewhere ? unlock.otherNight : unlock.night].unlocks.insert(unlock.stamp);
  }

  const bool isOn = hoursAreOn(date);
  const Days last = isOn || seen.contains(dayText(present)) ? present : present - std::chrono::days(1);
  std::vector<std::string> evenings;
  for (Days day = last - std::chrono::days(89); day <= last; day += std::chrono::days(1)) {
    evenings.push_back(dayText(day));
  }
  std::erase_if(seen,
                [&](const auto& night) { return night.first < evenings.front() || night.first > evenings.back(); });

  if (listed != evenings) fail(Rule::history, "other nights than the last ninety: " + page.dump());
  if (told != seen) fail(Rule::history, "the nights are not those that were seen: " + page.dump());
  const bool isDamaged = !unlockLogBefore_.empty() || (records_.empty() && !recordFile_.empty() && recordFile_ != "[]");
  if (page.at("damaged") != isDamaged) fail(Rule::history, "damage that nobody did, or that is not told");

  // Tonight counts as soon as it cannot be kept any more.
  if (isOn && seen[evenings.back()].unlocks.empty()) evenings.pop_back();
  int inARow = 0;
  while (inARow < static_cast<int>(evenings.size()) && seen[*(evenings.rbegin() + inARow)].isKept()) ++inARow;
  const auto kept = std::count_if(evenings.rbegin(), evenings.rbegin() + 30,
                                  [&](const std::string& night) { return seen[night].isKept(); });
  if (page.at("keptInARow") != inARow || page.at("keptOfLast30") != kept) {
    fail(Rule::history, "figures that do not fit: " + page.dump());
  }
}

}  // namespace dormel::nights
