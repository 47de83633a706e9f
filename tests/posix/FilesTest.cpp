#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/posix/PosixClock.h"
#include "platform/linux/posix/PosixFiles.h"
#include "tests/posix/Child.h"
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

TEST(PosixFiles, WhatCannotBeRemovedDoesNotKeepTheRest) {
  const TemporaryHome home;
  EXPECT_EQ(statusAsOrdinaryUser(home.path(),
                                 [&] {
                                   posix::PosixFiles files;
                                   const std::string all = home.path() + "/all";
                                   for (const char* folder : {"/a", "/kept", "/z/deep"})
                                     files.createDirectories(all + folder, 0700);
                                   for (const char* file : {"/a/file", "/kept/file", "/z/deep/file"})
                                     files.write(all + file, "", {});
                                   files.write(home.path() + "/elsewhere", "", {});
                                   static_cast<void>(::symlink(home.path().c_str(), (all + "/link").c_str()));
                                   ::chmod((all + "/kept").c_str(), 0500);
                                   return files.remove(all) && files.exists(all + "/kept/file") &&
                                                  !files.exists(all + "/a") && !files.exists(all + "/z") &&
                                                  !files.exists(all + "/link") &&
                                                  files.exists(home.path() + "/elsewhere")
                                              ? 0
                                              : 1;
                                 }),
            0);
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
