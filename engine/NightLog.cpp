#include "engine/NightLog.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "core/AppSupport.h"
#include "core/Config.h"
#include "platform/Files.h"
#include "platform/Keyboard.h"
#include "platform/Platform.h"

namespace dormel {

// Found by the JSON library through argument-dependent lookup, hence here and not in the unnamed namespace.
// Decoding throws unless all three keys are there with values of their types.
static void to_json(nlohmann::json& json, const NightRecord& record) {
  json = {{"night", record.night}, {"firedAt", record.firedAt}, {"idleSeconds", record.idleSeconds}};
}

static void from_json(const nlohmann::json& json, NightRecord& record) {
  if (!json.at("idleSeconds").is_number_integer()) throw std::invalid_argument("idleSeconds is no whole number");
  json.at("night").get_to(record.night);
  json.at("firedAt").get_to(record.firedAt);
  json.at("idleSeconds").get_to(record.idleSeconds);
}

namespace NightLog {
namespace {

constexpr const char* FILE_NAME = "nights.json";
constexpr Seconds IDLE_LIMIT = 300.0;
constexpr int RETENTION_DAYS = 90;

std::string dateText(const LocalTime& time) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", time.year, time.month, time.day);
  return text.data();
}

/// "2026-11-16T21:00:04.512Z"
std::string isoText(Date date) {
  using namespace std::chrono;
  const auto day = floor<days>(date);
  const year_month_day ymd(day);
  const hh_mm_ss time(floor<milliseconds>(date - day));
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", static_cast<int>(ymd.year()),
                static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()), static_cast<int>(time.subseconds().count()));
  return text.data();
}

std::vector<NightRecord> prune(std::vector<NightRecord> records, Date now) {
  const auto cutOff = platform().calendar.addingDays(now, -RETENTION_DAYS);
  if (!cutOff) return records;
  const std::string oldest = dateText(platform().calendar.localTime(*cutOff));
  std::erase_if(records, [&](const NightRecord& record) { return record.night < oldest; });
  return records;
}

}  // namespace

Stored stored() {
  const Files& files = platform().files;
  const std::string path = AppSupport::url(FILE_NAME);
  const auto bytes = files.read(path);
  if (!bytes) return {{}, files.exists(path)};
  const nlohmann::json json = nlohmann::json::parse(*bytes, nullptr, false);
  Stored found{{}, !json.is_array()};
  if (found.damaged) return found;
  for (const auto& record : json) {
    try {
      found.records.push_back(record.get<NightRecord>());
    } catch (const std::exception&) {
      found.damaged = true;
    }
  }
  return found;
}

bool recordDormelFired(Date now, std::optional<Seconds> idle) {
  const std::string night = nightKey(now);
  Stored before = stored();
  // One record that cannot be read costs the others, too.
  std::vector<NightRecord> records = before.damaged ? std::vector<NightRecord>() : std::move(before.records);
  for (const NightRecord& record : records) {
    if (record.night == night) return false;
  }
  const Seconds idleTime = idle ? *idle : secondsSinceLastInput();
  // Nobody was there to be locked out. The night stays open for a later attempt.
  if (idleTime > IDLE_LIMIT) return false;
  records.push_back({night, isoText(now), static_cast<std::int64_t>(idleTime)});
  try {
    // Nobody is told when this fails: the lock must not depend on its log.
    static_cast<void>(AppSupport::write(nlohmann::json(prune(std::move(records), now)).dump(), FILE_NAME));
  } catch (const std::exception&) {  // a stored text that is not UTF-8 cannot be encoded
  }
  return true;
}

Seconds secondsSinceLastInput() {
  std::optional<Seconds> least;
  for (const InputKind kind : {InputKind::keyDown, InputKind::mouseMoved, InputKind::leftMouseDown,
                               InputKind::rightMouseDown, InputKind::scrollWheel}) {
    const Seconds seconds = platform().inputIdle.secondsSinceLast(kind);
    if (std::isfinite(seconds) && seconds >= 0 && (!least || seconds < *least)) least = seconds;
  }
  return least.value_or(0.0);
}

std::string nightKey(Date date) {
  const Calendar& calendar = platform().calendar;
  const LocalTime time = calendar.localTime(date);
  if (time.hour >= Config::endHour()) return dateText(time);
  return dateText(calendar.localTime(calendar.addingDays(date, -1).value_or(date)));
}

}  // namespace NightLog
}  // namespace dormel
