#include "core/AppSupport.h"

#include <gtest/gtest.h>

#include "core/Constants.h"
#include "platform/sim/SimMachine.h"

namespace dormel {
namespace {

class AppSupportTest : public testing::Test {
 protected:
  const std::string folder = std::string("/home/user/Library/Application Support/") + BUNDLE_IDENTIFIER;
  const std::string file = folder + "/nights.json";

  SimMachine machine;
};

using Names = std::vector<std::string>;

TEST_F(AppSupportTest, KeepsFolderAndFilePrivateAndLeavesNothingBeside) {
  EXPECT_EQ(AppSupport::url("nights.json"), file);
  ASSERT_FALSE(AppSupport::write("one", "nights.json"));
  EXPECT_EQ(machine.files.mode(folder), 0700U);
  EXPECT_EQ(machine.files.mode(file), 0600U);

  machine.files.chmod(folder, 0755);
  machine.files.chmod(file, 0644);
  machine.files.put(folder + "/.nights.json.tmp", "half of an interrupted wri", 0400);
  ASSERT_FALSE(AppSupport::write("two", "nights.json"));
  EXPECT_EQ(machine.files.mode(folder), 0700U);
  EXPECT_EQ(machine.files.mode(file), 0600U);
  EXPECT_EQ(machine.files.content(file), "two");
  EXPECT_EQ(machine.files.names(folder), Names{"nights.json"});

  AppSupport::remove("nights.json");
  AppSupport::remove("nights.json");
  EXPECT_EQ(machine.files.names(folder), Names{});
}

TEST_F(AppSupportTest, AFailedWriteSaysWhyAndKeepsTheOldContents) {
  ASSERT_FALSE(AppSupport::write("old", "nights.json"));
  using Case = StoreError::Case;

  machine.files.setFreeBytes(2);
  auto error = AppSupport::write("new", "nights.json");
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind, Case::couldNotWrite);
  EXPECT_EQ(error->detail, "nights.json");
  EXPECT_EQ(machine.files.names(folder), Names{"nights.json"}) << "a partial temporary file stayed";
  machine.files.setFreeBytes({});

  // The folder itself is ours to tighten; what cannot be replaced is a folder in the file's place.
  machine.files.putDirectory(folder + "/taken");
  error = AppSupport::write("new", "taken");
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind, Case::file);
  EXPECT_EQ(error->detail, "Is a directory");
  EXPECT_EQ(machine.files.content(file), "old");

  machine.files.erase(folder);
  machine.files.chmod("/home/user/Library/Application Support", 0500);
  error = AppSupport::write("new", "nights.json");
  ASSERT_TRUE(error);
  EXPECT_EQ(error->kind, Case::couldNotCreateDirectory);
}

}  // namespace
}  // namespace dormel
