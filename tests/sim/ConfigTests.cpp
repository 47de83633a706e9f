#include "core/Config.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

using Value = std::optional<PropertyListValue>;

void store(SimMachine& machine, const char* key, Value value) {
  machine.defaults.writeFromOutside(key, std::move(value));
}

Value number(std::int64_t value) { return PropertyListValue{value}; }
Value flag(bool value) { return PropertyListValue{value}; }
Value text(const char* value) { return PropertyListValue{std::string(value)}; }

TEST(Config, BlockingHours) {
  SimMachine machine;
  // Clocks go back from 3 to 2 on 25 October and forward from 2 to 3 on 29 March.
  machine.calendar.addTransition("2026-03-29 01:00:00", SimCalendar::Offset(120));
  machine.calendar.addTransition("2026-10-25 01:00:00", SimCalendar::Offset(60));
  const Date firstHalfPastTwo = machine.calendar.at("2026-10-25 02:30:00");
  const auto at = [&](const char* moment) { return machine.calendar.at(moment); };
  const std::chrono::hours anHour(1);

  struct {
    Value start, end;
    Date when;
    bool blocking;
  } const rows[] = {
      {number(22), number(6), at("2026-11-16 21:59:59"), false},
      {number(22), number(6), at("2026-11-16 22:00:00"), true},
      {number(22), number(6), at("2026-11-17 05:59:59"), true},
      {number(22), number(6), at("2026-11-17 06:00:00"), false},
      {number(1), number(6), at("2026-11-17 00:30:00"), false},
      {number(1), number(6), at("2026-11-17 01:00:00"), true},
      {number(1), number(6), at("2026-11-17 06:00:00"), false},
      {number(6), number(6), at("2026-11-17 06:00:00"), false},
      {number(6), number(6), at("2026-11-17 05:00:00"), false},
      // Nothing stored, or nothing usable: 0 to 6.
      {{}, {}, at("2026-11-16 23:59:59"), false},
      {{}, {}, at("2026-11-17 00:00:00"), true},
      {text("22"), flag(true), at("2026-11-17 05:59:59"), true},
      {text("22"), flag(true), at("2026-11-16 23:00:00"), false},
      {PropertyListValue{22.0}, {}, at("2026-11-16 23:00:00"), false},
      // The hour that comes twice is blocked twice; the one that never comes, never.
      {number(2), number(3), firstHalfPastTwo, true},
      {number(2), number(3), firstHalfPastTwo + anHour, true},
      {number(2), number(3), firstHalfPastTwo + 2 * anHour, false},
      {number(2), number(3), at("2026-03-29 01:59:59"), false},
      {number(2), number(3), at("2026-03-29 03:00:00"), false},
      {number(22), number(6), at("2026-03-29 05:59:59"), true},
      {number(22), number(6), at("2026-03-29 06:00:00"), false},
  };
  for (const auto& row : rows) {
    store(machine, defaultsKey::blockStartHour, row.start);
    store(machine, defaultsKey::blockEndHour, row.end);
    EXPECT_EQ(Config::isBlockingNow(row.when), row.blocking)
        << Config::startHour() << " to " << Config::endHour() << ", " << row.when.time_since_epoch().count();
    const auto left = std::chrono::seconds(std::lround(Config::blockingTimeLeft(row.when)));
    EXPECT_FALSE(Config::isBlockingNow(row.when + left));
    EXPECT_EQ(left.count() > 0, row.blocking);
    EXPECT_TRUE(!row.blocking || Config::isBlockingNow(row.when + left - std::chrono::seconds(1)));
  }
}

TEST(Config, FlagsReadAbsentUnlessOfTheirType) {
  struct {
    Value stored;
    bool enabled, complete;
  } const rows[] = {
      {{}, true, false},        {flag(false), false, false}, {flag(true), true, true},
      {number(0), true, false}, {text("no"), true, false},   {PropertyListValue{PropertyListArray{}}, true, false},
  };
  SimMachine machine;
  for (const auto& row : rows) {
    store(machine, defaultsKey::blockingEnabled, row.stored);
    store(machine, defaultsKey::onboardingComplete, row.stored);
    EXPECT_EQ(Config::blockingEnabled(), row.enabled);
    EXPECT_EQ(Config::onboardingComplete(), row.complete);
  }
}

TEST(Config, ClockFormatFollowsTheLocaleUntilTheUserChose) {
  struct {
    std::optional<std::string> pattern;
    bool is24;
  } const rows[] = {{"HH", true}, {"h a", false}, {"H 'Uhr'", true}, {{}, true}, {"ah", false}};
  for (const auto& row : rows) {
    SimMachine machine;
    machine.calendar.setHourPattern(row.pattern);
    EXPECT_EQ(Config::use24HourClock(), row.is24);
    Config::seedClockFormatFromSystem();
    machine.calendar.setHourPattern(row.is24 ? "h a" : "HH");
    EXPECT_EQ(Config::use24HourClock(), row.is24) << "the first choice was not kept";

    store(machine, defaultsKey::use24HourClock, flag(false));
    Config::seedClockFormatFromSystem();
    EXPECT_FALSE(Config::use24HourClock()) << "a stored false was overwritten";
  }
}

TEST(Config, StartHourOptionsStandInTheOrderOfTheEvening) {
  using Hours = std::vector<int>;
  const struct {
    int hour;
    Hours options;
  } rows[] = {
      {22, {20, 21, 22, 23, 0, 1, 2}},   {19, {19, 20, 21, 22, 23, 0, 1, 2}}, {3, {20, 21, 22, 23, 0, 1, 2, 3}},
      {5, {20, 21, 22, 23, 0, 1, 2, 5}}, {12, {12, 20, 21, 22, 23, 0, 1, 2}}, {11, {20, 21, 22, 23, 0, 1, 2, 11}},
  };
  for (const auto& row : rows) EXPECT_EQ(Config::startHourOptions(row.hour), row.options) << row.hour;
}

}  // namespace
}  // namespace dormel
