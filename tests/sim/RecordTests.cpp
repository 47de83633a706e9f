// What a night leaves on disk, and that nothing the disk does can hurt the lock.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/AppSupport.h"
#include "engine/NightLog.h"
#include "tests/sim/Night.h"

namespace dormel {
namespace {

std::string nights(const Night& night) { return night.machine.files.content(AppSupport::url("nights.json")); }

/// The nights recorded, oldest first.
std::string keys(const Night& night) {
  std::string all;
  for (const auto& record : nlohmann::json::parse(nights(night))) all += record.at("night").get<std::string>() + " ";
  return all;
}

std::string record(const std::string& night) {
  return R"({"night":")" + night + R"(","firedAt":"2026-01-01T00:00:00.000Z","idleSeconds":0})";
}

TEST(Records, OnePerNightHoweverOftenTheLockBegins) {
  Night night;
  night.arm(22);
  night.machine.advanceTo("2026-11-16 22:30:00");
  EXPECT_EQ(nlohmann::json::parse(nights(night)),
            nlohmann::json::parse(R"([{"night":"2026-11-16","firedAt":"2026-11-16T21:00:00.000Z","idleSeconds":12}])"));
  night.machine.process.terminate();
  night.machine.advanceTo("2026-11-17 01:00:00");
  night.machine.process.kill();
  night.machine.advanceTo("2026-11-17 21:00:00");
  EXPECT_EQ(keys(night), "2026-11-16 ") << "after midnight it is still the same night";
  night.machine.advanceTo("2026-11-17 23:00:00");
  EXPECT_EQ(keys(night), "2026-11-16 2026-11-17 ");
  EXPECT_EQ(night.machine.files.mode(AppSupport::url("nights.json")), 0600U);
}

TEST(Records, NightsAreNamedAfterTheirEvening) {
  Night night;
  const struct {
    const char* moment;
    int end;
    const char* key;
  } rows[] = {{"2026-11-16 22:00:00", 6, "2026-11-16"}, {"2026-11-17 01:00:00", 6, "2026-11-16"},
              {"2026-11-17 05:59:59", 6, "2026-11-16"}, {"2026-11-17 06:00:00", 6, "2026-11-17"},
              {"2027-01-01 00:00:00", 6, "2026-12-31"}, {"2028-03-01 02:00:00", 6, "2028-02-29"},
              {"2026-11-17 00:00:00", 0, "2026-11-17"}};
  for (const auto& row : rows) {
    night.setHours(22, row.end);
    night.machine.launch({});  // a process to ask in, refused or not
    EXPECT_EQ(NightLog::nightKey(night.machine.calendar.at(row.moment)), row.key) << row.moment;
  }
}

TEST(Records, OnlyWhenSomebodyWasThere) {
  const Seconds unknown = std::numeric_limits<Seconds>::infinity();
  const struct {
    std::optional<Seconds> keyDown, mouseMoved;
    const char* idle;  // null: no record
  } rows[] = {
      {300.0, 400.0, "300"}, {300.5, 300.5, nullptr},   {299.9, 4000.0, "299"},
      {-1.0, 20.0, "20"},    {unknown, 500.0, nullptr}, {unknown, unknown, "0"},
  };
  for (const auto& row : rows) {
    Night night;
    night.machine.keyboard.setIdle(InputKind::keyDown, row.keyDown);
    night.machine.keyboard.setIdle(InputKind::mouseMoved, row.mouseMoved);
    night.begin("2026-11-16 22:00:00");
    if (row.idle == nullptr) {
      EXPECT_EQ(nights(night), "");
    } else {
      EXPECT_EQ(nlohmann::json::parse(nights(night)).at(0).at("idleSeconds").dump(), row.idle);
    }
  }
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
    Night night;
    night.machine.files.put("/home/user/Library/Application Support/" + std::string(BUNDLE_IDENTIFIER) + "/nights.json",
                            row.before);
    night.begin("2026-11-16 22:00:00");
    EXPECT_EQ(keys(night), row.after) << row.name;
    night.machine.process.kill();
  }
}

TEST(Records, ADiskThatFailsLosesTheRecordAndNothingElse) {
  const struct {
    const char* name;
    std::function<void(SimMachine&)> breakIt;
  } rows[] = {
      {"full", [](SimMachine& m) { m.files.setFreeBytes(0); }},
      {"home unwritable", [](SimMachine& m) { m.files.chmod("/home/user", 0500); }},
      {"a file in the folder's place", [](SimMachine& m) { m.files.put("/home/user/Library", "?"); }},
      {"hung", [](SimMachine& m) { m.timeline.setSerialQueuesHang(true); }},
  };
  for (const auto& row : rows) {
    Night night;
    row.breakIt(night.machine);
    night.begin("2026-11-16 22:00:00");
    EXPECT_NEAR(night.unlock(), 30, 0.11) << row.name;
    night.machine.advance(310);
    EXPECT_EQ(night.machine.windows.cover(), 1) << row.name;
    night.machine.advanceTo("2026-11-17 06:00:03");
    EXPECT_EQ(night.machine.exitStatus(), 0) << row.name;
  }
}

TEST(Records, UnlockLinesAreAppendedAndSurviveAnImmediateEnd) {
  Night night;
  night.machine.files.put(Config::unlockLogPath(), "2026-11-15 23:41:07 — unlocked (#1, held 30s)\n");
  night.begin("2026-11-16 22:00:00");
  pressAll(night.machine, night.controller());
  // The very turn that completes the hold is this process's last.
  night.machine.timeline.advanceUntil([&] { return night.session().state() == SessionState::grace; }, 31);
  night.machine.run([&] { night.machine.process.exit(1); });
  EXPECT_EQ(night.machine.files.content("/home/user/Library/Logs/Dormel/dormel-unlock.log"),
            "2026-11-15 23:41:07 — unlocked (#1, held 30s)\n2026-11-16 22:00:30 — unlocked (#1, held 30s)\n");
}

TEST(Records, ALogFolderThatVanishesComesBack) {
  Night night;
  night.begin("2026-11-16 22:00:00");
  night.unlock();
  night.machine.files.erase("/home/user/Library/Logs");
  night.machine.advance(310);
  night.unlock();
  EXPECT_EQ(night.machine.files.content(Config::unlockLogPath()), "2026-11-16 22:06:41 — unlocked (#2, held 60s)\n");
}

}  // namespace
}  // namespace dormel
