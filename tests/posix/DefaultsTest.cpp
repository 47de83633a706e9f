// The settings file: what is damaged, unreadable or contended loses nothing and stops nothing.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <memory>

#include "platform/linux/posix/PosixFiles.h"
#include "platform/linux/posix/PropertyListDefaults.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

constexpr const char* DOMAIN_NAME = "com.example.test";

class DefaultsTest : public testing::Test {
 protected:
  std::string file() const { return home.path() + "/Library/Preferences/" + DOMAIN_NAME + ".plist"; }
  posix::PropertyListDefaults open() { return {files, output, DOMAIN_NAME}; }

  TemporaryHome home;
  posix::PosixFiles files;
  Recorder output;
};

TEST_F(DefaultsTest, KeepsTypesAcrossProcesses) {
  auto writer = open();
  writer.set("flag", {false});
  writer.set("hour", {std::int64_t{22}});
  writer.set("text", {std::string("grün & <gut>")});
  const auto reader = open();
  EXPECT_EQ(reader.boolean("flag"), false);
  EXPECT_EQ(reader.integer("hour"), 22);
  EXPECT_EQ(reader.object("text"), PropertyListValue{std::string("grün & <gut>")});
  EXPECT_EQ(reader.integer("text"), std::nullopt);
  writer.remove("hour");
  EXPECT_EQ(reader.object("hour"), std::nullopt);
  EXPECT_TRUE(output.errors.empty());
}

TEST_F(DefaultsTest, ReadsAgainWhatAnotherProcessWrote) {
  auto mine = open();
  mine.set("hour", {std::int64_t{21}});
  auto other = open();
  for (std::int64_t hour = 0; hour < 24; ++hour) {
    other.set("hour", {hour});
    ASSERT_EQ(mine.integer("hour"), hour);
  }
}

TEST_F(DefaultsTest, KeepsADamagedFileAside) {
  const std::string valid =
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>a</key><integer>1</integer></dict></plist>";
  const struct {
    const char* name;
    std::string bytes;
  } cases[] = {{"empty", ""},
               {"cut short", valid.substr(0, valid.size() / 2)},
               {"not xml", "hello"},
               {"binary", std::string("\0\1\2\xff", 4)},
               {"an array at the top", "<plist version=\"1.0\"><array/></plist>"},
               {"deep nesting", [] {
                  std::string deep = "<plist version=\"1.0\">";
                  for (int i = 0; i < 2000; ++i) deep += "<array>";
                  for (int i = 0; i < 2000; ++i) deep += "</array>";
                  return deep + "</plist>";
                }()}};
  std::size_t seen = 0;
  for (const auto& damage : cases) {
    SCOPED_TRACE(damage.name);
    put(file(), damage.bytes);
    auto defaults = open();
    const auto before = seen == 0 ? std::nullopt : std::optional(std::int64_t{2});  // in the copy of the last change
    EXPECT_EQ(defaults.integer("a"), before);
    EXPECT_EQ(defaults.integer("a"), before);
    EXPECT_EQ(output.errors.size(), ++seen) << "one line, once";
    const std::string aside = file() + ".damaged" + (seen == 1 ? "" : "-" + std::to_string(seen));
    EXPECT_EQ(contents(aside), damage.bytes);
    defaults.set("a", {std::int64_t{2}});
    EXPECT_EQ(open().integer("a"), 2);
  }
  // What somebody wrote by hand is in no copy; who has read it goes on by it.
  put(file(), valid);
  const auto reader = open();
  EXPECT_EQ(reader.integer("a"), 1);
  put(file(), "hello");
  EXPECT_EQ(reader.integer("a"), 1);
  EXPECT_EQ(open().integer("a"), 2) << "no file, but a copy";
}

TEST_F(DefaultsTest, LeavesAnUnreadableFileAlone) {
  // A folder in the file's place is unreadable for everybody, root included.
  std::filesystem::create_directories(file() + "/inside");
  auto defaults = open();
  EXPECT_EQ(defaults.object("a"), std::nullopt);
  ASSERT_EQ(output.errors.size(), 1U);
  defaults.set("a", {std::int64_t{2}});
  EXPECT_EQ(defaults.integer("a"), 2) << "holds for this process";
  EXPECT_FALSE(defaults.synchronize());
  EXPECT_TRUE(std::filesystem::exists(file() + "/inside"));
  std::filesystem::remove_all(file());
  EXPECT_TRUE(defaults.synchronize()) << "written as soon as it can be";
  EXPECT_EQ(open().integer("a"), 2);
}

TEST_F(DefaultsTest, ALookThatFailsRemovesNothing) {
  auto defaults = open();
  defaults.set("hour", {std::int64_t{22}});
  const std::string folder = home.path() + "/Library/Preferences";
  std::filesystem::rename(folder, folder + ".aside");
  std::filesystem::create_symlink(folder, folder);  // a look ends in ELOOP, for root, too
  EXPECT_EQ(defaults.integer("hour"), 22) << "who has read them goes by them";
  EXPECT_EQ(output.errors.size(), 1U);
  EXPECT_EQ(open().integer("hour"), std::nullopt);
  std::filesystem::remove(folder);
  std::filesystem::rename(folder + ".aside", folder);
  EXPECT_EQ(open().integer("hour"), 22);
  std::filesystem::remove(file());
  std::filesystem::remove(file() + ".good");
  EXPECT_EQ(defaults.integer("hour"), std::nullopt) << "removed";
}

TEST_F(DefaultsTest, AFullDiskLosesNothing) {
  auto defaults = open();
  defaults.set("old", {std::string(600, 'x')});
  const std::string before = contents(file());
  {
    const FullDisk full(512);
    defaults.set("new", {true});
  }
  EXPECT_EQ(contents(file()), before);
  EXPECT_EQ(output.errors.size(), 1U);
  EXPECT_EQ(defaults.boolean("new"), true);
  for (const auto& entry : std::filesystem::directory_iterator(home.path() + "/Library/Preferences")) {
    const std::string name = entry.path().filename().string();
    EXPECT_FALSE(name.starts_with(std::string(DOMAIN_NAME) + ".plist.") && !name.ends_with(".good"))
        << "left behind: " << entry.path();
  }
}

TEST_F(DefaultsTest, TwoWritersLoseNoKey) {
  constexpr int WRITES = 1000;
  const auto writer = [&](const std::string& prefix) {
    const pid_t child = ::fork();
    if (child == 0) {
      auto defaults = open();
      for (std::int64_t i = 0; i < WRITES; ++i) defaults.set(prefix + std::to_string(i % 50), {i});
      ::_exit(output.errors.empty() ? 0 : 1);
    }
    return child;
  };
  for (const pid_t child : {writer("left"), writer("right")}) {
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  const auto defaults = open();
  for (const char* prefix : {"left", "right"}) {
    for (std::int64_t i = 0; i < 50; ++i) {
      EXPECT_EQ(defaults.integer(prefix + std::to_string(i)), WRITES - 50 + i) << prefix << i;
    }
  }
}

TEST_F(DefaultsTest, RemovingTheDomainLeavesNothing) {
  auto defaults = open();
  defaults.set("a", {true});
  defaults.removeDomain();
  EXPECT_EQ(defaults.object("a"), std::nullopt);
  EXPECT_TRUE(std::filesystem::is_empty(home.path() + "/Library/Preferences"));
}

}  // namespace
}  // namespace dormel
