// The texts that other programs read: unit files, autostart entries, environments.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/linux/freedesktop/AutostartEntry.h"
#include "platform/linux/jobs/JobLaunch.h"
#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/systemd/UnitText.h"

namespace dormel::jobs {
namespace {

TEST(AutostartEntry, TheUsersSwitch) {
  using Switch = freedesktop::AutostartEntry::Switch;
  const struct {
    const char* text;
    Switch state;
  } rows[] = {{"[Desktop Entry]\nName=x\n", Switch::on},
              {"[Desktop Entry]\nHidden=true", Switch::off},
              {"[Desktop Entry]\r\nHidden = true \r\n", Switch::off},
              {"[Desktop Entry]\nHidden=false\nX-GNOME-Autostart-enabled=true\n", Switch::on},
              {"[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n", Switch::off},
              {"[Desktop Entry]\nHidden=1\n", Switch::off},
              {"[Desktop Entry]\n#Hidden=true\nHiddenX=true\n", Switch::on},
              {"[Desktop Entry]\n[Desktop Action x]\nHidden=true\n", Switch::on},
              {"Hidden=true\n", Switch::on},
              {"", Switch::on}};
  for (const auto& row : rows) EXPECT_EQ(freedesktop::switchInDesktopEntry(row.text), row.state) << row.text;
}

TEST(AutostartEntry, Escaping) {
  const struct {
    std::vector<std::string> command;
    std::string exec;
  } rows[] = {{{"/a b", "x"}, R"("/a b" "x")"},
              {{"$`\""}, R"("\\$\\`\\"")"},
              {{"\\"}, R"("\\\\")"},
              {{"100%"}, R"("100%%")"},
              {{"a\nb", ""}, R"("a\nb" "")"}};
  for (const auto& row : rows) EXPECT_EQ(freedesktop::desktopEntryExec(row.command), row.exec);
  EXPECT_EQ(freedesktop::desktopEntryString(" a b\\"), R"(\sa b\\)");
}

TEST(JobLaunch, OnlyWhatIsNotThereIsGone) {
  std::string folder = (std::filesystem::temp_directory_path() / "dormel-permit-XXXXXX").string();
  ASSERT_NE(::mkdtemp(folder.data()), nullptr);
  ::setenv("DISPLAY", ":1", 1);
  std::ofstream(folder + "/there") << "x";
  std::filesystem::create_symlink("loop", folder + "/loop");  // a look ends in ELOOP, for root, too
  const struct {
    const char *list, *program, *reason;  // how it begins, or null for none
  } rows[] = {{"there", "there", nullptr},
              {"missing", "there", "its property list is gone"},
              {"there", "missing", "its program is gone"},
              {"there", "there/below", "its program is gone"},
              {"loop", "there", nullptr},
              {"loop/list", "loop/program", nullptr}};
  for (const auto& row : rows) {
    const auto reason = reasonNotToStart("test", folder + "/" + row.list, folder + "/" + row.program,
                                         [] { return std::vector<std::vector<std::string>>(); });
    EXPECT_EQ(reason.value_or("").substr(0, 19), std::string(row.reason == nullptr ? "" : row.reason).substr(0, 19));
  }
  std::filesystem::remove_all(folder);
}

TEST(SessionEnvironment, WhichDisplayIsBetter) {
  using Variables = std::vector<std::string>;
  const Variables none{"LANG=C"}, forwarded{"DISPLAY=localhost:10.0"}, here{"DISPLAY=:0", "XAUTHORITY=/a"},
      wayland{"WAYLAND_DISPLAY=wayland-0"};
  const struct {
    Variables theirs, ours;
    bool another;
    std::string display;  // what a job is loaded with
  } rows[] = {{here, here, false, ":0"},
              {here, none, false, ":0"},
              {here, forwarded, false, ":0"},
              {forwarded, none, false, "localhost:10.0"},
              {forwarded, {"DISPLAY=localhost:11.0"}, true, "localhost:11.0"},
              {none, forwarded, true, "localhost:10.0"},
              {forwarded, here, true, ":0"},
              {here, {"DISPLAY=:1"}, true, ":1"},
              {here, {"DISPLAY=:0", "XAUTHORITY=/b"}, true, ":0"},
              {here, wayland, true, ""},
              {wayland, forwarded, false, ""}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.theirs.front() + " and " + row.ours.front());
    EXPECT_EQ(namesAnotherDisplay(row.theirs, row.ours), row.another);
    EXPECT_EQ(valueIn(keepingDisplay(row.ours, row.theirs), "DISPLAY"), row.display);
  }
}

TEST(UnitText, EnvironmentComesBackAsItWentIn) {
  const std::vector<std::string> environment{"A=1", "LANG=100% \"$HOME\" \\x41", "EMPTY="};
  auto asked = environment;
  asked.emplace_back("WAYLAND_DISPLAY");
  Job job;
  job.arguments = {"/bin/true"};
  const std::string unit = systemd::serviceUnit(job, "/launchctl", asked);
  EXPECT_EQ(systemd::environmentIn(unit), environment);
  EXPECT_NE(unit.find("\nUnsetEnvironment=WAYLAND_DISPLAY\n"), std::string::npos);
}

TEST(SessionEnvironment, NamesADisplay) {
  EXPECT_TRUE(namesDisplay({"WAYLAND_DISPLAY=wayland-0"}));
  EXPECT_FALSE(namesDisplay({"DISPLAY=", "WAYLAND_DISPLAY"}));
}

}  // namespace
}  // namespace dormel::jobs
