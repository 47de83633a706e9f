#include "platform/linux/jobs/StartCalendar.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <string>

namespace dormel::jobs {
namespace {

std::time_t utc(const char* text) {
  std::tm time{};
  EXPECT_NE(strptime(text, "%Y-%m-%d %H:%M:%S", &time), nullptr) << text;
  return timegm(&time);
}

std::string shown(std::time_t moment) {
  std::tm time{};
  gmtime_r(&moment, &time);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &time);
  return text.data();
}

class Zone {
 public:
  explicit Zone(const char* name) {
    ::setenv("TZ", name, 1);
    ::tzset();
  }
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;
  ~Zone() {
    ::unsetenv("TZ");
    ::tzset();
  }
};

TEST(StartCalendar, NextStart) {
  const struct {
    const char* what;
    const char* zone;
    StartTime start;
    const char* after;  // UTC, and so is the next
    const char* next;
  } rows[] = {
      {"later today", "Europe/Berlin", {22, 0}, "2026-11-22 20:59:59", "2026-11-22 21:00:00"},
      {"not the moment itself", "Europe/Berlin", {22, 0}, "2026-11-22 21:00:00", "2026-11-23 21:00:00"},
      {"over the year's end", "Europe/Berlin", {0, 30}, "2026-12-31 00:00:00", "2026-12-31 23:30:00"},
      {"an evening after summer time began", "Europe/Berlin", {22, 0}, "2026-03-29 12:00:00", "2026-03-29 20:00:00"},
      {"hour skipped", "Europe/Berlin", {2, 0}, "2026-03-28 12:00:00", "2026-03-29 01:00:00"},
      {"half past skipped", "Europe/Berlin", {2, 30}, "2026-03-28 12:00:00", "2026-03-29 01:00:00"},
      {"the day after", "Europe/Berlin", {2, 0}, "2026-03-29 01:00:00", "2026-03-30 00:00:00"},
      {"hour twice: the first", "Europe/Berlin", {2, 0}, "2026-10-24 12:00:00", "2026-10-25 00:00:00"},
      {"hour twice: only once", "Europe/Berlin", {2, 0}, "2026-10-25 00:00:00", "2026-10-26 01:00:00"},
      {"midnight skipped", "America/Havana", {0, 0}, "2026-03-07 12:00:00", "2026-03-08 05:00:00"},
      {"half an hour skipped", "Australia/Lord_Howe", {2, 15}, "2026-10-02 16:00:00", "2026-10-03 15:30:00"},
      {"a day that there is not", "Pacific/Apia", {22, 0}, "2011-12-30 09:00:00", "2011-12-31 08:00:00"},
  };
  for (const auto& row : rows) {
    const Zone zone(row.zone);
    EXPECT_EQ(shown(nextStart(row.start, utc(row.after))), row.next) << row.what;
  }
}

TEST(StartCalendar, DisplacedStarts) {
  const struct {
    const char* zone;
    StartTime start;
    std::vector<std::string> moments;
  } rows[] = {{"Europe/Berlin", {2, 0}, {"2027-03-28 01:00:00", "2028-03-26 01:00:00"}},
              {"Europe/Berlin", {3, 0}, {}},
              {"Europe/Berlin", {22, 0}, {}},
              {"America/Havana", {0, 0}, {"2027-03-14 05:00:00", "2028-03-12 05:00:00"}},
              {"UTC", {2, 0}, {}}};
  for (const auto& row : rows) {
    const Zone zone(row.zone);
    std::vector<std::string> moments;
    for (const std::time_t moment : startsSkippedByClockChange(row.start, utc("2026-11-22 12:00:00"), 600)) {
      moments.push_back(shown(moment));
    }
    EXPECT_EQ(moments, row.moments) << row.zone << " " << row.start.hour;
  }
}

}  // namespace
}  // namespace dormel::jobs
