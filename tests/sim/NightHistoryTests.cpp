// What is shown of the nights, from the logs alone.
#include "engine/NightHistory.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/AppSupport.h"
#include "core/Constants.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

const std::string NIGHTS_FILE =
    "/home/user/Library/Application Support/" + std::string(BUNDLE_IDENTIFIER) + "/nights.json";
const std::string UNLOCKS_FILE = "/home/user/Library/Logs/Dormel/dormel-unlock.log";

/// A record; `firedAt` is UTC, an hour behind the clocks.
std::string record(const std::string& night, const std::string& firedAt, int idle = 0) {
  return R"({"night":")" + night + R"(","firedAt":")" + firedAt + R"(.512Z","idleSeconds":)" + std::to_string(idle) +
         "}";
}

std::string list(const std::vector<std::string>& records) {
  std::string all;
  for (const std::string& one : records) all += (all.empty() ? "[" : ",") + one;
  return all + "]";
}

std::string unlock(const std::string& stamp, int number = 1) {
  return stamp + " — unlocked (#" + std::to_string(number) + ", held 30s)\n";
}

class Logs {
 public:
  explicit Logs(const std::string& now, int start = 22, int end = 6) : machine({.start = "2026-01-01 00:00:00"}) {
    machine.setWallClock(now);
    machine.defaults.putInteger(defaultsKey::blockStartHour, start);
    machine.defaults.putInteger(defaultsKey::blockEndHour, end);
  }
  void put(const std::string& nights, const std::string& unlocks) {
    machine.files.put(NIGHTS_FILE, nights);
    machine.files.put(UNLOCKS_FILE, unlocks);
  }
  [[nodiscard]] NightHistory read() { return NightHistory::read(machine.clock.now()); }

  SimMachine machine;
};

/// The sentences of all nights that have something to tell, and of the last one.
std::string told(const NightHistory& history) {
  std::string all;
  for (const HistoryNight& night : history.nights) {
    if (night.state() == HistoryNight::State::unrecorded && &night != &history.nights.back()) continue;
    all += (all.empty() ? "" : "\n") + night.sentence(true);
  }
  return all + (history.damaged ? "\ndamaged" : "");
}

TEST(NightHistory, EveryNightIsToldOnItsEvening) {
  const std::string lock = record("2026-11-16", "2026-11-16T22:00:04");
  const struct {
    const char* name;
    const char* now;
    std::string nights;
    std::string unlocks;
    const char* told;
    int start = 22;
    int end = 6;
  } rows[] = {
      {"by day the last night is yesterday's", "2026-11-17 12:00:00", list({lock}), "",
       "Monday, 16 November: locked at 23:00, not opened"},
      {"after midnight it is still last evening's", "2026-11-17 01:30:00", list({lock}), unlock("2026-11-17 00:41:07"),
       "Monday, 16 November: locked at 23:00, opened once at 00:41 so far"},
      {"in the evening it is today's once the hours began", "2026-11-17 22:00:00", list({lock}), "",
       "Monday, 16 November: locked at 23:00, not opened\nTuesday, 17 November: no lock recorded so far"},
      {"and not before", "2026-11-17 21:59:59", list({lock}), "", "Monday, 16 November: locked at 23:00, not opened"},
      {"in the order of the clock", "2026-11-17 12:00:00", list({lock}),
       unlock("2026-11-17 00:15:00", 2) + unlock("2026-11-17 01:02:00", 3) + unlock("2026-11-16 23:41:07"),
       "Monday, 16 November: locked at 23:00, opened 3 times, at 23:41, 00:15 and 01:02"},
      {"opened before somebody was seen at the computer", "2026-11-17 12:00:00",
       list({record("2026-11-15", "2026-11-15T22:50:00"), record("2026-11-16", "2026-11-16T22:46:07")}),
       unlock("2026-11-16 23:41:07"),
       "Sunday, 15 November: locked at 23:50, not opened\n"
       "Monday, 16 November: locked at 23:46, opened once at 23:41"},
      {"opened, and never recorded", "2026-11-17 12:00:00", "[]",
       unlock("2026-11-16 23:41:07") + unlock("2026-11-16 23:59:07", 2),
       "Monday, 16 November: opened twice, at 23:41 and 23:59"},
      {"ninety nights and not one more", "2026-11-17 12:00:00",
       list({record("2026-08-18", "2026-08-18T22:00:00"), record("2026-08-19", "2026-08-19T21:00:00")}),
       unlock("2026-08-18 23:41:07"),
       "Wednesday, 19 August: locked at 23:00, not opened\nMonday, 16 November: no lock recorded"},

      // The hours were others then.
      {"in the morning, until ten", "2026-11-17 12:00:00", list({lock}), unlock("2026-11-17 07:30:00"),
       "Monday, 16 November: locked at 23:00, opened once at 07:30"},
      {"in the morning, and never recorded", "2026-11-17 12:00:00", "[]", unlock("2026-11-17 07:30:00"),
       "Monday, 16 November: opened once at 07:30"},
      {"in the seconds in which the lock goes", "2026-11-17 12:00:00", list({lock}), unlock("2026-11-17 06:00:03"),
       "Monday, 16 November: locked at 23:00, opened once at 06:00"},
      {"earlier in the evening, after a lock that began late", "2026-11-17 12:00:00",
       list({record("2026-11-15", "2026-11-15T22:50:00")}), unlock("2026-11-16 21:30:00"),
       "Sunday, 15 November: locked at 23:50, not opened\nMonday, 16 November: opened once at 21:30"},
      {"by day, from eight to four", "2026-11-18 12:00:00", list({record("2026-11-16", "2026-11-17T07:00:00")}),
       unlock("2026-11-17 09:30:00"),
       "Monday, 16 November: locked at 08:00, opened once at 09:30\nTuesday, 17 November: no lock recorded"},

      // Clocks that move.
      {"the hour that comes twice", "2026-10-25 12:00:00", list({record("2026-10-24", "2026-10-25T01:10:00")}),
       unlock("2026-10-25 02:50:00") + unlock("2026-10-25 02:20:00", 2),
       "Saturday, 24 October: locked at 02:10, opened twice, at 02:20 and 02:50"},
      {"summer time begins", "2026-03-29 12:00:00", list({record("2026-03-28", "2026-03-29T01:00:00")}),
       unlock("2026-03-29 03:30:00"), "Saturday, 28 March: locked at 03:00, opened once at 03:30"},
      {"set back by a day: tonight's record is there already", "2026-11-16 12:00:00", list({lock}), "",
       "Monday, 16 November: locked at 23:00, not opened"},
      {"set back by more: what is ahead is not shown", "2026-11-10 12:00:00", list({lock}),
       unlock("2026-11-16 23:41:07"), "Monday, 9 November: no lock recorded"},
      {"a night twice: the first counts", "2026-11-17 12:00:00",
       list({lock, record("2026-11-16", "2026-11-16T23:30:00")}), "",
       "Monday, 16 November: locked at 23:00, not opened"},

      // Damage.
      {"no records", "2026-11-17 12:00:00", "[]", "", "Monday, 16 November: no lock recorded"},
      {"torn", "2026-11-17 12:00:00", "[" + lock, unlock("2026-11-16 23:41:07"),
       "Monday, 16 November: opened once at 23:41\ndamaged"},
      {"records of other shapes beside a good one", "2026-11-17 12:00:00",
       list({R"({"night":"2026-11-15"})", "7", record("2026-02-30", "2026-02-28T22:00:00"),
             record("2026-11-14", "2026-11-14 22:00:00"), record("2026-11-13", "2026-11-13T22:00:00", -1), lock}),
       "", "Monday, 16 November: locked at 23:00, not opened\ndamaged"},
      {"lines that say nothing", "2026-11-17 12:00:00", list({lock}), "an older line\n2026-11-16 23:4",
       "Monday, 16 November: locked at 23:00, not opened\ndamaged"},
  };
  for (const auto& row : rows) {
    Logs logs(row.now, row.start, row.end);
    logs.machine.calendar.addTransition("2026-03-29 01:00:00", SimCalendar::Offset(120));
    logs.machine.calendar.addTransition("2026-10-25 01:00:00", SimCalendar::Offset(60));
    logs.machine.setWallClock(row.now);
    logs.put(row.nights, row.unlocks);
    logs.machine.journal.clear();
    const NightHistory history = logs.read();
    EXPECT_EQ(told(history), row.told) << row.name;
    ASSERT_EQ(history.nights.size(), 90U);
    for (std::size_t i = 1; i < 90; ++i) {
      EXPECT_EQ(history.nights[i].evening - history.nights[i - 1].evening, std::chrono::days(1)) << row.name;
    }
    EXPECT_EQ(logs.machine.journal.lines(), std::vector<std::string>()) << "looking changes nothing: " << row.name;
  }
}

TEST(NightHistory, Figures) {
  const std::string tonight = record("2026-11-17", "2026-11-17T22:00:00", 200);
  const std::string before =
      record("2026-11-16", "2026-11-16T22:00:00", 90) + "," + record("2026-11-15", "2026-11-15T22:00:00", 10) + ",";
  const struct {
    const char* now;
    std::string nights;
    std::string unlocks;
    int inARow;
    int ofThirty;
    std::optional<int> minutes;
  } rows[] = {
      {"2026-11-17 12:00:00", "[]", "", 0, 0, {}},
      {"2026-11-17 12:00:00", list({before + record("2026-11-13", "2026-11-13T22:00:00", 300)}), "", 2, 3, 2},
      {"2026-11-17 12:00:00", list({before + record("2026-11-14", "2026-11-14T22:00:00", 11)}),
       unlock("2026-11-15 23:30:00"), 1, 2, 0},
      {"2026-11-17 12:00:00",
       list({record("2026-10-17", "2026-10-17T22:00:00"), record("2026-10-18", "2026-10-18T22:00:00")}), "", 0, 1, 0},
      // Tonight is neither kept nor lost before it is over, unless it was opened.
      {"2026-11-17 23:30:00", list({before + tonight}), "", 2, 2, 2},
      {"2026-11-17 23:30:00", list({before + tonight}), unlock("2026-11-17 23:20:00"), 0, 2, 2},
      {"2026-11-18 06:00:00", list({before + tonight}), "", 3, 3, 2},
  };
  for (const auto& row : rows) {
    Logs logs(row.now);
    logs.put(row.nights, row.unlocks);
    const NightHistory history = logs.read();
    EXPECT_EQ(history.keptInARow(), row.inARow) << row.nights;
    EXPECT_EQ(history.keptOfRecent(), row.ofThirty) << row.nights;
    EXPECT_EQ(history.medianIdleMinutes(), row.minutes) << row.nights;
  }
}

/// The command's output, whole.
std::string printed(Program& program, const char* command) {
  program.machine.launch({command});
  EXPECT_EQ(program.machine.exitStatus(), 0) << command;
  return program.machine.output.lines().back();
}

void putThree(Program& program) {
  program.machine.setWallClock("2026-11-17 12:00:00");
  program.machine.defaults.putBoolean(defaultsKey::use24HourClock, true);
  program.machine.files.put(NIGHTS_FILE, list({record("2026-11-14", "2026-11-14T22:00:00", 60),
                                               record("2026-11-15", "2026-11-15T22:00:00", 60),
                                               record("2026-11-16", "2026-11-16T22:00:00", 61)}));
  program.machine.files.put(UNLOCKS_FILE, unlock("2026-11-15 23:41:00"));
}

TEST(NightHistory, TheTerminalShowsTheSame) {
  Program program;
  putThree(program);
  EXPECT_EQ(printed(program, "--nights"),
            "    Aug Sep     Oct     Nov\n"
            "Mon   · · · · · · · · · · · · ■\n"
            "Tue   · · · · · · · · · · · ·\n"
            "Wed · · · · · · · · · · · · ·\n"
            "Thu · · · · · · · · · · · · ·\n"
            "Fri · · · · · · · · · · · · ·\n"
            "Sat · · · · · · · · · · · · ■\n"
            "Sun · · · · · · · · · · · · 1\n"
            "\n"
            "■ kept, 2 opened twice, · no lock recorded\n"
            "\n"
            "1 night kept in a row\n"
            "2 of the last 30 nights kept\n"
            "1 min from the last use to the lock (median)\n"
            "\n"
            "Sunday, 15 November: locked at 23:00, opened once at 23:41");

  for (const int columns : {200, 40, 31, 30, 13, 12, 11, 3, 1}) {
    program.machine.output.setTerminal(Terminal{columns, false});
    std::istringstream lines(printed(program, "--nights"));
    int squares = 0;
    for (std::string line; std::getline(lines, line);) {
      const auto length = std::count_if(line.begin(), line.end(), [](char c) { return (c & 0xC0) != 0x80; });
      const bool isOneWord = line.find(' ') == std::string::npos;
      EXPECT_TRUE(length <= columns || isOneWord) << columns << ": " << line;
      if (line.find("recorded") != std::string::npos) break;
      for (const char* sign : {"·", "■", "1"}) {
        for (auto at = line.find(sign); at != std::string::npos; at = line.find(sign, at + 1)) ++squares;
      }
    }
    EXPECT_GE(squares, 90) << columns;
  }
  program.machine.output.setTerminal(Terminal{80, true});
  EXPECT_NE(printed(program, "--nights").find("\033[1m■\033[0m"), std::string::npos);
}

TEST(NightHistory, ScriptsGetJson) {
  Program program;
  putThree(program);
  program.machine.files.put(NIGHTS_FILE, program.machine.files.content(NIGHTS_FILE) + "]");
  const auto damaged = nlohmann::json::parse(printed(program, "--nights=json"));
  EXPECT_EQ(damaged.at("damaged"), true);
  EXPECT_EQ(program.machine.output.errors().back(),
            "Dormel: Some records cannot be read. What they told is missing here.");
  EXPECT_EQ(damaged.at("nights").size(), 90U);
  putThree(program);
  const auto whole = nlohmann::json::parse(printed(program, "--nights=json"));
  EXPECT_EQ(whole.at("nights").at(88).dump(),
            R"({"idleSeconds":60,"lockedAt":"2026-11-15T22:00:00.512Z","night":"2026-11-15","over":true,)"
            R"("state":"opened","unlocks":["2026-11-15T23:41:00"]})");
  EXPECT_EQ(whole.at("keptInARow"), 1);
  EXPECT_EQ(whole.at("medianIdleSeconds"), 60);
  EXPECT_EQ(program.machine.output.errors().size(), 1U) << "said once";

  program.machine.files.put(NIGHTS_FILE, "[]");
  program.machine.files.put(UNLOCKS_FILE, "");
  EXPECT_EQ(printed(program, "--nights"), "No night has been recorded yet.");
}

}  // namespace
}  // namespace dormel
