#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/posix/PosixFiles.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

TEST(PosixFiles, WritesWithModeAppendsAndReplaces) {
  const TemporaryHome home;
  posix::PosixFiles files;
  EXPECT_EQ(files.homeDirectory(), home.path());
  const std::string folder = home.path() + "/a/b/c";
  EXPECT_FALSE(files.createDirectories(folder, 0700));
  EXPECT_FALSE(files.createDirectories(folder, 0700)) << "an existing folder is a success";
  EXPECT_EQ(files.mode(folder), 0700U);

  const std::string path = folder + "/file";
  EXPECT_FALSE(files.append(path, "x")) << "append never creates";
  const mode_t mask = ::umask(0);
  EXPECT_FALSE(files.write(path, "one\n", 0600));
  ::umask(mask);
  EXPECT_EQ(files.mode(path), 0600U);
  EXPECT_TRUE(files.append(path, "two\n"));
  EXPECT_EQ(files.read(path), "one\ntwo\n");
  EXPECT_FALSE(files.writeAtomically(path, "three"));
  EXPECT_EQ(files.mode(path), 0600U) << "replacing keeps the permissions";
  EXPECT_EQ(files.read(path), "three");

  EXPECT_TRUE(files.createDirectories(path + "/under", 0700)) << "a file is in the way";
  EXPECT_TRUE(files.write(home.path() + "/missing/file", "x", {}));
  EXPECT_EQ(files.read(folder), std::nullopt);
  EXPECT_FALSE(files.remove(home.path() + "/a"));
  EXPECT_TRUE(files.remove(home.path() + "/a")) << "already gone";
}

TEST(PosixFiles, AnAppendThatDoesNotFitLeavesNoHalfOfIt) {
  const TemporaryHome home;
  posix::PosixFiles files;
  const std::string path = home.path() + "/log";
  EXPECT_FALSE(files.write(path, "one\n", {}));
  {
    const FullDisk full(6);  // "one\n" and half a line
    EXPECT_TRUE(files.append(path, "two\n"));
  }
  EXPECT_TRUE(files.append(path, "three\n"));
  EXPECT_EQ(files.read(path), "one\nthree\n");
}

TEST(PosixCalendar, FollowsTheTimeZoneThroughItsChanges) {
  ::setenv("TZ", "Europe/Berlin", 1);
  const posix::PosixCalendar calendar;
  using namespace std::chrono;
  const Date beforeChange = sys_days(2026y / October / 25) + hours(0) + minutes(30);  // 02:30, still summer time
  EXPECT_EQ(calendar.localTime(beforeChange).hour, 2);
  EXPECT_EQ(calendar.localTime(beforeChange + hours(1)).hour, 2) << "the hour comes twice";
  EXPECT_EQ(calendar.localTime(beforeChange + hours(2)).hour, 3);
  const auto dayBefore = calendar.addingDays(sys_days(2026y / October / 25) + hours(21), -1);
  ASSERT_TRUE(dayBefore);
  EXPECT_EQ(calendar.localTime(*dayBefore).hour, 22) << "same time of day, 25 hours earlier";
  EXPECT_EQ(calendar.localTime(*dayBefore).day, 24);
  ::unsetenv("TZ");
}

}  // namespace
}  // namespace dormel
