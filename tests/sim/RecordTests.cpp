// The records of former nights, as a night finds and leaves them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/AppSupport.h"
#include "tests/sim/NightFixture.h"

namespace dormel {
namespace {

/// The nights recorded, oldest first.
std::string keys(const NightFixture& night) {
  std::string all;
  const std::string file = night.machine.files.content(AppSupport::url("nights.json"));
  for (const auto& record : nlohmann::json::parse(file)) all += record.at("night").get<std::string>() + " ";
  return all;
}

std::string record(const std::string& night) {
  return R"({"night":")" + night + R"(","firedAt":"2026-01-01T00:00:00.000Z","idleSeconds":0})";
}

TEST(Records, DamagedOnesAreReplacedAndOldOnesGo) {
  const struct {
    const char* name;
    std::string before;
    const char* after;
  } rows[] = {
      {"malformed", "[{", "2026-11-16 "},
      {"empty", "", "2026-11-16 "},
      {"not UTF-8", "[\"\xFF\"]", "2026-11-16 "},
      {"no array", record("2026-11-15"), "2026-11-16 "},
      {"a key missing", R"([{"night":"2026-11-15","firedAt":"x"}])", "2026-11-16 "},
      {"a key of another type", R"([{"night":"2026-11-15","firedAt":"x","idleSeconds":"0"}])", "2026-11-16 "},
      {"too deep", std::string(100'000, '['), "2026-11-16 "},
      {"in order", "[" + record("2026-11-14") + "," + record("2026-11-15") + "]", "2026-11-14 2026-11-15 2026-11-16 "},
      {"90 and 91 days", "[" + record("2026-08-17") + "," + record("2026-08-18") + "]", "2026-08-18 2026-11-16 "},
      {"tonight's", "[" + record("2026-11-16") + "]", "2026-11-16 "},
  };
  for (const auto& row : rows) {
    NightFixture night;
    night.machine.files.put("/home/user/Library/Application Support/" + std::string(BUNDLE_IDENTIFIER) + "/nights.json",
                            row.before);
    night.begin("2026-11-16 22:00:00");
    EXPECT_EQ(keys(night), row.after) << row.name;
    night.machine.process.kill();
  }
}

}  // namespace
}  // namespace dormel
