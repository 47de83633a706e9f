// The texts that other programs read: unit files, autostart entries, environments.
#include <gtest/gtest.h>

#include "platform/linux/freedesktop/AutostartEntry.h"
#include "platform/linux/jobs/SessionEnvironment.h"
#include "platform/linux/systemd/UnitText.h"

namespace dormel::jobs {
namespace {

TEST(UnitText, Words) {
  const struct {
    std::string text, word, plain;
  } rows[] = {{"/a b", "\"/a b\"", "/a b"},
              {"100%h $HOME", "\"100%%h $HOME\"", "100%%h $HOME"},
              {"a\"b'c\\d", "\"a\\\"b'c\\\\d\"", "a\"b'c\\d"},
              {"", "\"\"", ""},
              {"é;#", "\"é;#\"", "é;#"},
              {"a\nb\tc", "\"a\\x0ab\\x09c\"", ""}};
  for (const auto& row : rows) {
    EXPECT_EQ(systemd::commandWord(row.text), row.word);
    if (!row.plain.empty()) {
      EXPECT_EQ(systemd::plainValue(row.text), row.plain);
    }
  }
}

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

TEST(SessionEnvironment, NamesADisplay) {
  EXPECT_TRUE(namesDisplay({"WAYLAND_DISPLAY=wayland-0"}));
  EXPECT_FALSE(namesDisplay({"DISPLAY=", "WAYLAND_DISPLAY"}));
}

}  // namespace
}  // namespace dormel::jobs
