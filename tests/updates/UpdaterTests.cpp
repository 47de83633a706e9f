// When the program looks for updates, what it says about them, and what it does when it is opened.
#include <gtest/gtest.h>

#include "platform/linux/updates/BundleUpdater.h"
#include "platform/linux/updates/UpdateHelper.h"
#include "tests/sim/Program.h"

namespace dormel::updates {
namespace {

using Kind = UpdateResult::Kind;

struct FakeHelper final : UpdateHelper {
  void check(bool fetch, std::function<void(const UpdateResult&)> onResult, Task onEnd) override {
    checks.push_back(fetch ? "fetch" : "look");
    tell = std::move(onResult);
    end = std::move(onEnd);
  }
  void cancel() override { checks.emplace_back("cancel"); }
  [[nodiscard]] std::optional<std::string> waiting() const override { return staged; }
  UpdateResult install() override { return placed; }
  void clear() override { checks.emplace_back("clear"); }
  /// The helper's process says this and ends.
  void answer(const std::vector<UpdateResult>& results) {
    for (const UpdateResult& result : results) tell(result);
    end();
  }
  std::vector<std::string> asked() { return std::exchange(checks, {}); }

  std::vector<std::string> checks;
  std::function<void(const UpdateResult&)> tell;
  Task end;
  std::optional<std::string> staged;
  UpdateResult placed{Kind::nothing};
};

class UpdaterTest : public testing::Test {
 protected:
  using Asked = std::vector<std::string>;
  static constexpr Seconds HOUR = 3600;

  void start(bool enabled = true) {
    updater.reset();
    updater.emplace(machine.clock, machine.runLoop, machine.defaults, helper,
                    BundleUpdater::Options{enabled, 21600, 10, "1.0"});
  }
  std::string after(const std::vector<UpdateResult>& results) {
    helper.answer(results);
    return updater->status();
  }

  SimMachine machine;
  FakeHelper helper;
  std::optional<BundleUpdater> updater;
};

TEST_F(UpdaterTest, LooksWhenTheIntervalIsOverWhoeverLookedLast) {
  start();
  machine.advance(9);
  EXPECT_EQ(helper.asked(), Asked{});
  machine.advance(1);
  EXPECT_EQ(helper.asked(), Asked{"fetch"});
  helper.answer({{Kind::current}});
  machine.advance(5 * HOUR);
  start();  // the interval holds over a restart
  machine.advance(HOUR - 60);
  EXPECT_EQ(helper.asked(), Asked{});
  updater->setAutomaticallyDownloadsUpdates(false);
  machine.advance(60);
  EXPECT_EQ(helper.asked(), Asked{"look"});
  helper.answer({{Kind::available, "1.1"}});
  updater->setAutomaticallyChecksForUpdates(false);
  machine.advance(24 * HOUR);
  EXPECT_EQ(helper.asked(), Asked{});
  updater->setAutomaticallyChecksForUpdates(true);
  machine.advance(HOUR);
  EXPECT_EQ(helper.asked(), Asked{"look"});
  helper.answer({});
  machine.sleep(8 * HOUR);
  machine.advance(HOUR);
  EXPECT_EQ(helper.asked(), Asked{"look"}) << "the machine slept";
  helper.answer({});
  machine.jumpWallClock(-48 * HOUR);
  machine.advance(HOUR);
  EXPECT_EQ(helper.asked(), Asked{"look"}) << "the last look lies in the future";
}

TEST_F(UpdaterTest, SaysWhatCameOfIt) {
  start();
  int notes = 0;
  const auto registration = updater->observe([&] { ++notes; });
  const struct {
    std::vector<UpdateResult> results;
    const char* status;
  } rows[] = {
      {{{Kind::current}}, "Dormel 1.0 is the newest version."},
      {{{Kind::fetching, "1.1"}, {Kind::ready, "1.1"}},
       "Dormel 1.1 is ready and will be installed when you open Dormel again."},
      {{{Kind::fetching, "1.1"}, {Kind::notGenuine, "1.1"}},
       "The download of Dormel 1.1 was damaged or not genuine, so it was thrown away. Nothing was changed."},
      {{{Kind::fetching, "1.1"}},
       "Dormel 1.1 could not be downloaded. Nothing was changed; Dormel will try again later."},
      {{}, "Dormel could not look for updates. It will try again later."},
  };
  for (const auto& row : rows) {
    updater->checkForUpdates();
    EXPECT_FALSE(updater->canCheckForUpdates());
    EXPECT_EQ(updater->status(), "Looking for updates…");
    updater->checkForUpdates();
    EXPECT_EQ(helper.asked(), Asked{"fetch"}) << "one at a time, and by hand it is always fetched";
    notes = 0;
    EXPECT_EQ(after(row.results), row.status);
    EXPECT_GT(notes, 0);
    EXPECT_TRUE(updater->canCheckForUpdates());
  }
}

TEST_F(UpdaterTest, KnowsWhatWaitsAndForgetsIt) {
  helper.staged = "1.1";
  start();
  EXPECT_EQ(updater->status(), "Dormel 1.1 is ready and will be installed when you open Dormel again.");
  EXPECT_FALSE(updater->installStagedUpdate());
  EXPECT_EQ(updater->status(), "") << "it was of no use any more";
  helper.placed = {Kind::notGenuine, "1.1"};
  EXPECT_FALSE(updater->installStagedUpdate());
  EXPECT_TRUE(updater->status().ends_with("Nothing was changed."));
  helper.placed = {Kind::installed, "1.1"};
  EXPECT_TRUE(updater->installStagedUpdate());
  updater->forget();
  EXPECT_EQ(helper.asked(), (Asked{"cancel", "clear"}));
  machine.advance(24 * HOUR);
  updater->checkForUpdates();
  EXPECT_EQ(helper.asked(), Asked{});
  EXPECT_FALSE(updater->canCheckForUpdates() || machine.defaults.object(updateKey::lastCheck));
}

TEST_F(UpdaterTest, WhatWasFetchedBeforeItWasSwitchedOffStaysWhereItIs) {
  const std::string ready = "Dormel 1.1 is ready and will be installed when you open Dormel again.";
  helper.staged = "1.1";
  helper.placed = {Kind::installed, "1.1"};
  start();
  EXPECT_EQ(updater->status(), ready);
  updater->setAutomaticallyDownloadsUpdates(false);
  EXPECT_EQ(updater->status(), "");
  EXPECT_FALSE(updater->installStagedUpdate());
  start();
  EXPECT_EQ(updater->status(), "");
  EXPECT_FALSE(updater->installStagedUpdate()) << "nor in the next process";
  updater->setAutomaticallyDownloadsUpdates(true);
  EXPECT_EQ(updater->status(), ready);

  machine.advance(10);
  updater->setAutomaticallyDownloadsUpdates(false);  // in the middle of a download
  EXPECT_EQ(after({{Kind::fetching, "1.1"}, {Kind::ready, "1.1"}}), "");
  EXPECT_FALSE(updater->installStagedUpdate());

  updater->checkForUpdates();
  EXPECT_EQ(after({{Kind::ready, "1.1"}}), ready);
  start();
  EXPECT_EQ(updater->status(), ready);
  EXPECT_TRUE(updater->installStagedUpdate()) << "the user asked for this one";
  helper.staged = "1.2";  // the job's process fetched it meanwhile
  start();
  EXPECT_FALSE(updater->installStagedUpdate()) << "but not for that one";
}

TEST_F(UpdaterTest, NothingIsAskedWithoutAFeed) {
  helper.staged = "1.1";
  helper.placed = {Kind::installed, "1.1"};
  start(false);
  machine.advance(24 * HOUR);
  updater->checkForUpdates();
  EXPECT_FALSE(updater->installStagedUpdate() || updater->canCheckForUpdates() || updater->hasFeed());
  EXPECT_EQ(helper.asked(), Asked{});
  EXPECT_EQ(updater->status(), "");
}

TEST(UpdateAtOpening, IsPutInPlaceByDayAndNeverWhileLockedIn) {
  const struct {
    const char* hour;
    bool enabled;
    std::vector<std::string> arguments;
    bool placed;
  } rows[] = {{"12:00:00", true, {}, true},  {"23:00:00", true, {}, false}, {"23:00:00", false, {}, true},
              {"05:59:59", true, {}, false}, {"06:00:00", true, {}, true},  {"12:00:00", true, {"--scheduled"}, false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.hour) + (row.enabled ? "" : ", lock off"));
    const std::string bundle = "/Applications/Dormel (1).app";
    Program program(bundle);
    program.machine.childProcesses.standIn("/usr/bin/open", bundle + "/Contents/Helpers/open");
    program.arm();
    program.machine.setWallClock(std::string("2026-11-16 ") + row.hour);
    program.machine.defaults.putBoolean(defaultsKey::blockingEnabled, row.enabled);
    program.machine.updater.setStaged(true);
    program.machine.journal.clear();
    program.open(row.arguments);
    const auto effects = program.effects();
    const auto has = [&](const std::string& start) {
      return std::any_of(effects.begin(), effects.end(), [&](const auto& line) { return line.starts_with(start); });
    };
    EXPECT_EQ(has("update put in place"), row.placed);
    const bool reopened = std::any_of(effects.begin(), effects.end(), [&](const auto& line) {
      return line.ends_with("; done; '" + bundle + "/Contents/Helpers/open' '" + bundle + "') &");
    });
    EXPECT_EQ(reopened, row.placed) << "once this process is gone";
    EXPECT_EQ(has("main window 1 made"), !row.placed && row.arguments.empty());
    EXPECT_EQ(program.machine.exitStatus() == 0, row.placed || !row.arguments.empty());
  }
}

}  // namespace
}  // namespace dormel::updates
