// What the windows that the user opens show, as far as logic decides it.
#include <gtest/gtest.h>

#include "assistant/AssentaAssistant.h"
#include "platform/linux/DesktopWording.h"
#include "settings/AccessibilityCardView.h"
#include "settings/SettingsView.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = Program::Lines;

TEST(Settings, HourLabels) {
  const struct {
    int hour;
    const char* label;
  } rows[] = {{0, "12:00 AM"}, {1, "1:00 AM"}, {11, "11:00 AM"}, {12, "12:00 PM"}, {13, "1:00 PM"}, {23, "11:00 PM"}};
  for (const auto& row : rows) EXPECT_EQ(hourLabel(row.hour), row.label);
}

/// The settings' view by itself, on a machine that was set up for 22 to 6; what it asks of its owner is journalled.
struct Page {
  struct Start {
    const char* at;
    bool enabled = true, complete = true, arms = true;
  };
  explicit Page(Start start) {
    machine.setWallClock(std::string("2026-11-16 ") + start.at);
    machine.defaults.putInteger(defaultsKey::blockStartHour, 22);
    machine.defaults.putInteger(defaultsKey::blockEndHour, 6);
    machine.defaults.putBoolean(defaultsKey::blockingEnabled, start.enabled);
    machine.defaults.putBoolean(defaultsKey::onboardingComplete, start.complete);
    machine.defaults.putBoolean(defaultsKey::debugLoggingEnabled, true);
    machine.files.putDirectory(Config::logDirectory());
    const auto noted = [this](const char* what) { return [this, what] { machine.journal.note(what); }; };
    const auto arm = [this, arms = start.arms] {
      machine.journal.note("armed for ", Config::startHour());
      return arms;
    };
    view = SettingsView::create(machine.updater, {{}, {}, {}, arm, noted("not armed"), noted("in front")});
    view->onAppear();
    machine.journal.clear();
  }

  /// What was done since the last time this was asked, and what the debug log got.
  [[nodiscard]] std::string effects() {
    std::string all;
    for (const std::string& line : machine.journal.lines()) {
      if (!line.ends_with("debug.log")) all += line.substr(sizeof "21:00:00.000 " - 1) + "; ";
    }
    for (const std::string& line : Program::trail()) all += line + "; ";
    machine.journal.clear();
    return all;
  }
  [[nodiscard]] std::string shown() const {
    return view->statusTitle() + (view->isLockedIn() ? ", locked in. " : ". ") + view->scheduleText() +
           (view->isTrusted() ? "" : " Not trusted.");
  }

  SimMachine machine;
  std::shared_ptr<SettingsView> view;
};

TEST(Settings, WhatTheUserChoosesIsStoredAndSaidUnlessItLoosensTheLock) {
  const auto choose = [](int hour) { return [hour](Page& page) { page.view->setStartHour(hour); }; };
  const auto turn = [](bool on) { return [on](Page& page) { page.view->setEnabled(on); }; };
  const auto clock = [](Page& page) { page.view->setUse24Hour(false); };
  const auto updates = [](Page& page) { page.view->setAutoUpdates(false); };
  const auto justBegun = [](auto act) {
    return [act](Page& page) {
      page.machine.setWallClock("2026-11-16 22:00:00");  // nobody has looked yet
      act(page);
    };
  };
  const Page::Start day{"12:00:00"}, night{"23:00:00"}, offAtNight{"23:00:00", false},
      firstRun{"12:00:00", true, false}, refused{"12:00:00", true, true, false};
  const std::string nine = "default blockStartHour = 21; default blockEndHour = 6; ";
  const std::string midnight = "default blockStartHour = 0; default blockEndHour = 6; armed for 0; ";
  const std::string logged = "schedule updated → lock 9:00 PM; ";
  const std::string by10 = "Locks 10:00 PM, unlocks 6:00 AM.", by9 = "Locks 9:00 PM, unlocks 6:00 AM.";
  const struct {
    const char* name;
    Page::Start start;
    std::function<void(Page&)> act;
    std::string effects, shows;
  } rows[] = {
      {"another hour", day, choose(21), nine + "armed for 21; " + logged, "Enabled. " + by9},
      {"the same hour", day, choose(22), "", "Enabled. " + by10},
      {"in the first run", firstRun, choose(21), nine + logged, "Enabled. " + by9},
      {"job refused", refused, choose(21), nine + "armed for 21; not armed; " + logged, "Enabled. " + by9},
      {"an hour, locked in", night, choose(21), "", "Enabled, locked in. " + by10},
      {"an hour, just locked in", day, justBegun(choose(1)), "", "Enabled, locked in. " + by10},
      {"an hour by night, lock off", offAtNight, choose(0), midnight + "schedule updated → lock 12:00 AM; ",
       "Disabled. Locks 12:00 AM, unlocks 6:00 AM."},
      {"off", day, turn(false), "default blockingEnabled = false; dormel disabled by user; ", "Disabled. " + by10},
      {"off, locked in", night, turn(false), "", "Enabled, locked in. " + by10},
      {"off, just locked in", day, justBegun(turn(false)), "", "Enabled, locked in. " + by10},
      {"on by night", offAtNight, turn(true), "default blockingEnabled = true; dormel enabled by user; ",
       "Enabled, locked in. " + by10},
      {"a clock", night, clock, "default use24HourClock = false; ", "Enabled, locked in. " + by10},
      {"updates by hand", day, updates,
       "automatic checks off; automatic downloads off; automatic updates off by user; ", "Enabled. " + by10},
  };
  for (const auto& row : rows) {
    Page page(row.start);
    row.act(page);
    EXPECT_EQ(page.effects(), row.effects) << row.name;
    EXPECT_EQ(page.shown(), row.shows) << row.name;
  }
}

TEST(Settings, AWriteThatFailsChangesNothingAndSaysSo) {
  const struct {
    const char* key;
    std::function<void(SettingsView&)> change;
  } rows[] = {
      {defaultsKey::blockingEnabled, [](SettingsView& view) { view.setEnabled(!view.isEnabled()); }},
      {defaultsKey::blockStartHour, [](SettingsView& view) { view.setStartHour(21); }},
      {defaultsKey::use24HourClock, [](SettingsView& view) { view.setUse24Hour(!view.use24Hour()); }},
  };
  for (const auto& row : rows) {
    for (const bool enabled : {true, false}) {
      Page page({"12:00:00", enabled});
      const std::string before = page.shown();
      const bool use24Hour = page.view->use24Hour();
      page.machine.defaults.setWritable(false);
      row.change(*page.view);
      EXPECT_EQ(page.shown(), before) << row.key;
      EXPECT_EQ(page.view->use24Hour(), use24Hour);
      EXPECT_TRUE(page.view->isUnsaved(row.key));
      EXPECT_EQ(Config::blockingEnabled(), enabled) << "nor for this process alone";
      EXPECT_EQ(Config::startHour(), 22);
      EXPECT_EQ(page.effects().find("armed"), std::string::npos);
      page.machine.defaults.setWritable(true);
      row.change(*page.view);
      EXPECT_FALSE(page.view->isUnsaved(row.key));
      EXPECT_TRUE(page.shown() != before || page.view->use24Hour() != use24Hour) << row.key;
    }
  }
}

TEST(Settings, ACopyWithoutAFeedOffersNoUpdates) {
  const struct {
    bool hasFeed;
    bool isPackaged;
    const char* text;
  } rows[] = {{true, false, "Dormel updates itself overnight. Nothing to click."},
              {false, false, "This copy doesn't look for updates. To update it, open a newer copy."},
              {false, true, "Updates come with your system's updates."}};
  for (const auto& row : rows) {
    SimMachine machine;
    machine.updater.setHasFeed(row.hasFeed);
    if (row.isPackaged) machine.bundle.setPackageRemoval("sudo apt remove dormel");
    const auto view = SettingsView::create(machine.updater, {});
    view->onAppear();
    EXPECT_EQ(view->canUpdate(), row.hasFeed);
    EXPECT_EQ(view->autoUpdatesText(), row.text);
  }
}

TEST(Settings, FollowsTheMachineWithinTwoSeconds) {
  Page page({"12:00:00"});
  AssentaAssistant& guide = AssentaAssistant::shared();
  int notices = 0;
  const Observation observation = page.view->observe([&] { ++notices; });
  const auto trust = [&](bool on) { page.machine.accessibility.setTrusted(on); };
  const std::string hours = "Locks 10:00 PM, unlocks 6:00 AM.";
  const struct {
    const char* name;
    std::function<void()> change;
    std::string shows, effects{};
    int notices = 1;
  } rows[] = {
      {"the permission goes", [&] { trust(false); }, "Enabled. " + hours + " Not trusted."},
      {"the hours begin", [&] { page.machine.setWallClock("2026-11-16 22:00:00"); },
       "Enabled, locked in. " + hours + " Not trusted."},
      {"the permission comes",
       [&] {
         page.view->openAccessibilitySettings({});
         EXPECT_EQ(guide.activePanel(), AssentaPanel::accessibility);
         page.machine.journal.clear();
         trust(true);
       },
       "Enabled, locked in. " + hours, "in front; "},
      {"the hours end", [&] { page.machine.setWallClock("2026-11-17 06:00:00"); }, "Enabled. " + hours},
      {"another process changes what this window shows",
       [&] { page.machine.defaults.writeFromOutside(defaultsKey::blockingEnabled, PropertyListValue{false}); },
       "Enabled. " + hours, "", 0},
  };
  for (const auto& row : rows) {
    page.machine.advance(60);
    notices = 0;
    page.machine.journal.clear();
    row.change();
    page.machine.advance(2);
    EXPECT_EQ(page.shown(), row.shows) << row.name;
    EXPECT_EQ(page.effects(), row.effects) << row.name;
    EXPECT_EQ(notices, row.notices) << row.name;
  }
  EXPECT_EQ(guide.activePanel(), std::nullopt);
  page.view.reset();
  EXPECT_EQ(page.machine.timeline.repeatingTimers(), 0);
}

TEST(Settings, FollowsTheWayToThePermission) {
  Page page({"12:00:00"});
  DesktopFacts facts{DisplayKind::none, true, true, "", "/f", "Not there yet.", true};
  const DesktopWording wording([&] { return facts; });
  page.machine.wording.speakAs(wording);
  page.machine.accessibility.setTrusted(false);
  page.machine.advance(2.1);
  EXPECT_NE(page.view->permissionText().find("Not there yet."), std::string::npos);
  int changes = 0;
  const auto observation = page.view->observe([&] { ++changes; });
  page.machine.advance(10);
  EXPECT_EQ(changes, 0);
  facts.extensionAdvice = "Log out once.";
  page.machine.advance(2.1);
  EXPECT_EQ(changes, 1);
}

TEST(Settings, FollowsTheUpdaterWhileItIsShown) {
  for (const auto& [checks, downloads] : {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
    SimMachine machine;
    machine.updater.setFlags(checks, downloads);
    machine.updater.setCanCheck(false);
    const auto view = SettingsView::create(machine.updater, {});
    EXPECT_TRUE(view->autoUpdates());
    view->onAppear();
    EXPECT_EQ(view->autoUpdates(), checks && downloads);
    EXPECT_FALSE(view->canCheckForUpdates());
    machine.updater.setStatus("Looking.");
    machine.updater.setCanCheck(true);
    EXPECT_TRUE(view->canCheckForUpdates());
    EXPECT_EQ(view->updateStatus(), "Looking.");
    view->openAccessibilitySettings({});
    view->onDisappear();
    EXPECT_EQ(machine.updater.observers(), 0U);
    EXPECT_EQ(AssentaAssistant::shared().activePanel(), std::nullopt);
  }
}

}  // namespace
}  // namespace dormel
