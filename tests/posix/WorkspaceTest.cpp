// The desktop's services for applications, on real files and with real programs in place of the desktop's own.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <map>

#include "app/AppInstaller.h"
#include "platform/Identifiers.h"
#include "platform/linux/freedesktop/AutostartLoginItems.h"
#include "platform/linux/freedesktop/DesktopWorkspace.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/freedesktop/Trash.h"
#include "platform/linux/freedesktop/Tree.h"
#include "platform/linux/posix/PosixChildProcesses.h"
#include "tests/posix/Child.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

namespace fs = std::filesystem;
using freedesktop::copyTree;
using freedesktop::moveToTrash;

class WorkspaceTest : public testing::Test {
 protected:
  std::string in(const std::string& name) const { return home.path() + "/" + name; }

  /// A program that writes its arguments into the file, a line each, and ends with `status`.
  void program(const std::string& path, const std::string& heard, const std::string& more = "exit 0") {
    put(path, "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + heard + ".part'; mv '" + heard + ".part' '" + heard + "'\n" +
                  more + "\n");
    ::chmod(path.c_str(), 0755);
  }

  /// A small application with a link, odd names and permissions.
  void application(const std::string& path) {
    put(path + "/Contents/Linux/Dormel", "program");
    ::chmod((path + "/Contents/Linux/Dormel").c_str(), 0750);
    put(path + "/Contents/Resources/It's ü", "text");
    fs::create_symlink("../Linux/Dormel", path + "/Contents/Resources/link");
    fs::last_write_time(path + "/Contents/Linux/Dormel", fs::file_time_type::clock::now() - std::chrono::hours(1000));
  }

  /// Everything below a folder: what it is, its permissions and its content.
  static std::map<std::string, std::string> listing(const std::string& folder) {
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      const auto status = entry.symlink_status();
      std::string text = std::to_string(static_cast<int>(status.permissions()));
      if (fs::is_symlink(status)) text += " -> " + fs::read_symlink(entry).string();
      if (fs::is_regular_file(status)) {
        text += " " + std::to_string(fs::last_write_time(entry).time_since_epoch().count()) + " " +
                contents(entry.path().string());
      }
      found[entry.path().lexically_relative(folder).string()] = text;
    }
    return found;
  }

  static std::string heardIn(const std::string& path) {
    std::string text = awaited(path);
    fs::remove(path);
    return text;
  }

  TemporaryHome home;
  // Tests started from a desktop have these set; they would lead out of the home folder.
  Variable config{"XDG_CONFIG_HOME", ""}, data{"XDG_DATA_HOME", ""}, state{"XDG_STATE_HOME", ""};
  Variable cache{"XDG_CACHE_HOME", ""}, runtime{"XDG_RUNTIME_DIR", home.path()};
  posix::PosixChildProcesses children;
  Recorder output;
  freedesktop::DesktopWorkspace workspace{children, output};
};

TEST_F(WorkspaceTest, CopiesWholeOrNotAtAll) {
  const std::string from = in("Night's Dormel.app");
  application(from);
  const auto wanted = listing(from);
  for (const char* name : {"copy.app", "-rf.app", "two\nlines.app", "übung 'n so.app"}) {
    fs::create_directories(in("Applications"));
    const std::string to = in("Applications") + "/" + name;
    const auto error = copyTree(children, from, to);
    EXPECT_FALSE(error) << error->message;
    EXPECT_EQ(listing(to), wanted);
    EXPECT_TRUE(copyTree(children, from, to)) << "something stands there";
    EXPECT_EQ(listing(to), wanted);
    fs::remove_all(to);
  }
  fs::create_directories(in("Applications/empty.app"));
  EXPECT_TRUE(copyTree(children, from, in("Applications/empty.app"))) << "an empty folder is something, too";
  EXPECT_TRUE(fs::remove(in("Applications/empty.app"))) << "it is empty still";
  put(from + "/Contents/Resources/large", std::string(20'000, 'x'));
  {
    const FullDisk full(8192);
    const auto error = copyTree(children, from, in("Applications/new.app"));
    ASSERT_TRUE(error);
    EXPECT_NE(error->message.find("large"), std::string::npos) << error->message;
  }
  EXPECT_TRUE(copyTree(children, in("missing.app"), in("Applications/new.app")));
  EXPECT_TRUE(copyTree(children, from, in("missing/new.app")));
  EXPECT_TRUE(fs::is_empty(in("Applications")));
}

/// Takes every write permission from a folder and all that it holds, as an image has it.
void freeze(const std::string& folder) {
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_symlink()) fs::permissions(entry, fs::perms(0222), fs::perm_options::remove);
  }
  fs::permissions(folder, fs::perms(0222), fs::perm_options::remove);
}

TEST_F(WorkspaceTest, MovesOutOfAReadOnlyImageOrLeavesEverythingAsItWas) {
  const std::string image = in("image/Night's Dormel.app");
  const std::string place = in("mine/Night's Dormel.app");
  application(image);
  ::chmod((image + "/Contents/Linux/Dormel").c_str(), 0755);  // everybody's to read
  put(image + "/Contents/Resources/large", std::string(20'000, 'x'));
  freeze(in("image"));
  ::chmod(home.path().c_str(), 0755);
  fs::create_directories(in("mine"));
  const Variable ownData("XDG_DATA_HOME", in("mine/.data"));
  const auto byHand = [&] { return !workspace.putCopy(image, place); };
  const auto byAdministrator = [&] {
    return children.runHearingErrors("/bin/sh", {"-c", AppInstaller::replaceCommand(image, place)}).status == 0;
  };
  for (const auto& move : {std::function<bool()>(byHand), std::function<bool()>(byAdministrator)}) {
    const int status = statusAsOrdinaryUser(in("mine"), [&] {
      if (!move()) return 1;
      if (contents(place + "/Contents/Linux/Dormel") != "program") return 2;
      if (!workspace.isDeletable(place)) return 3;
      put(place + "/old", "old");
      if (!move()) return 4;
      if (fs::exists(place + "/old")) return 5;
      put(place + "/old", "old");
      const auto before = listing(place);
      const FullDisk full(8192);
      if (move()) return 6;
      if (listing(place) != before) return 7;
      fs::remove_all(in("mine/.data"));
      return std::distance(fs::directory_iterator(in("mine")), fs::directory_iterator()) == 1 ? 0 : 8;
    });
    EXPECT_EQ(status, 0);
    fs::remove_all(place);
  }
}

TEST_F(WorkspaceTest, WhatWentToTheTrashInVainIsPutBack) {
  const std::string path = in("Night's Dormel.app");
  application(path);
  const auto wanted = listing(path);
  std::optional<freedesktop::Trashed> what;
  ASSERT_FALSE(moveToTrash(children, path, &what));
  ASSERT_TRUE(what);
  freedesktop::putBack(children, *what);
  EXPECT_EQ(listing(path), wanted);
  EXPECT_TRUE(fs::is_empty(in(".local/share/Trash/info")) && fs::is_empty(in(".local/share/Trash/files")));
}

TEST_F(WorkspaceTest, KnowsOneFolderAtTwoPlaces) {
  fs::create_directories(in("a"));
  fs::create_directories(in("b"));
  EXPECT_FALSE(workspace.isSameFile(in("a"), in("b")));
  EXPECT_FALSE(workspace.isSameFile(in("a"), in("missing")));
  const int status = statusOf([&] {
    if (!ownMounts() || ::mount(in("a").c_str(), in("b").c_str(), nullptr, MS_BIND, nullptr) != 0) return 77;
    return workspace.isSameFile(in("a"), in("b")) ? 0 : 1;
  });
  if (status == 77) GTEST_SKIP() << "no mounts of one's own here";
  EXPECT_EQ(status, 0);
}

TEST_F(WorkspaceTest, TrashKeepsWhatAndWhereItWas) {
  const std::string path = in("Night's 100% ü.app");
  const std::string can = in(".local/share/Trash");
  for (const char* name : {"Night's 100% ü", "Night's 100% ü 2"}) {
    application(path);
    const auto wanted = listing(path);
    const auto error = moveToTrash(children, path);
    ASSERT_FALSE(error) << error->message;
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(listing(can + "/files/" + name + ".app"), wanted);
    const std::string info = contents(can + "/info/" + name + ".app.trashinfo");
    EXPECT_TRUE(
        info.starts_with("[Trash Info]\nPath=" + home.path() + "/Night%27s%20100%25%20%C3%BC.app\nDeletionDate=2"))
        << info;
  }
  EXPECT_TRUE(moveToTrash(children, path)) << "there is nothing any more";
  EXPECT_EQ(std::distance(fs::directory_iterator(can + "/info"), fs::directory_iterator()), 2);
}

TEST_F(WorkspaceTest, TrashOfAnotherDiskAndWithoutPermission) {
  fs::create_directories(in("disk"));
  fs::create_directories(in("nobody"));
  static_cast<void>(!::chown(in("nobody").c_str(), NOBODY, NOBODY));
  ::chmod(home.path().c_str(), 0755);
  const int status = statusOf([&] {
    const std::string owner = "mode=755,uid=" + std::to_string(::geteuid()) + ",gid=" + std::to_string(::getegid());
    if (!ownMounts() || ::mount("disk", in("disk").c_str(), "tmpfs", 0, owner.c_str()) != 0) return 77;
    // Its own trash, where one may be made at the top of the disk.
    application(in("disk/top.app"));
    if (moveToTrash(children, in("disk/top.app"))) return 1;
    const std::string can = in("disk/.Trash-" + std::to_string(::geteuid()));
    if (!fs::exists(can + "/files/top.app/Contents/Linux/Dormel")) return 2;
    if (contents(can + "/info/top.app.trashinfo").find("\nPath=top.app\n") == std::string::npos) return 3;
    // Else the home folder's.
    fs::create_directories(in("disk/mine"));
    return statusAsOrdinaryUser(in("disk/mine"), [&] {
      application(in("disk/mine/own.app"));
      const auto wanted = listing(in("disk/mine/own.app"));
      const Variable ownData("XDG_DATA_HOME", in("nobody"));
      if (::geteuid() != NOBODY) return 0;  // everything is ours here
      if (moveToTrash(children, in("disk/mine/own.app"))) return 4;
      if (fs::exists(in("disk/mine/own.app")) || listing(in("nobody/Trash/files/own.app")) != wanted) return 5;
      return 0;
    });
  });
  if (status == 77) GTEST_SKIP() << "no mounts of one's own here";
  EXPECT_EQ(status, 0);
}

TEST_F(WorkspaceTest, WhatAnOrdinaryUserMayDo) {
  // Not ours to change: files of the administrator, or of nobody here.
  const std::string theirs = in("theirs");
  application(theirs + "/Dormel.app");
  fs::create_directories(in("sticky"));
  ::chmod(in("sticky").c_str(), 01777);
  put(in("sticky/file"), "x");
  if (::geteuid() != 0) ::chmod(theirs.c_str(), 0555);
  const bool separate = ::geteuid() == 0;
  ::chmod(home.path().c_str(), 0755);
  fs::create_directories(in("mine"));
  const int status = statusAsOrdinaryUser(in("mine"), [&] {
    application(in("mine/Dormel.app"));
    put(in("sticky/own"), "x");
    const struct {
      std::string path;
      bool writable, deletable;
    } cases[] = {{in("mine"), true, !separate},
                 {in("mine/Dormel.app"), true, true},
                 {in("mine/Dormel.app/Contents/Linux/Dormel"), true, true},
                 {theirs, false, false},
                 {theirs + "/Dormel.app", !separate, false},
                 {in("sticky/file"), !separate, !separate},
                 {in("sticky/own"), true, true},
                 {in("missing"), false, false}};
    int line = 1;
    for (const auto& example : cases) {
      if (workspace.isWritable(example.path) != example.writable) return line;
      if (workspace.isDeletable(example.path) != example.deletable) return 100 + line;
      ++line;
    }
    // A folder inside that we may not empty is enough.
    ::chmod(in("mine/Dormel.app/Contents/Linux").c_str(), 0500);
    if (workspace.isDeletable(in("mine/Dormel.app"))) return 200;
    const Variable ownData("XDG_DATA_HOME", in("mine/data"));
    if (!moveToTrash(children, theirs + "/Dormel.app")) return 201;
    if (!fs::exists(theirs + "/Dormel.app")) return 202;
    return fs::is_empty(in("mine/data/Trash/info")) ? 0 : 203;
  });
  EXPECT_EQ(status, 0) << "a line of the table, 100 more for its last column, or a step after it";
}

TEST_F(WorkspaceTest, StandardizesAndFindsApplicationsFolders) {
  fs::create_directories(in("real/Dormel.app"));
  fs::create_directory_symlink(in("real"), in("link"));
  const std::string here = workspace.standardized(home.path());
  EXPECT_EQ(workspace.standardized(in("link/../link/./Dormel.app/")), here + "/real/Dormel.app");
  EXPECT_EQ(workspace.standardized(in("link/not/yet/..")), here + "/real/not");
  const auto folders = workspace.applicationsDirectories();
  EXPECT_NE(std::find(folders.begin(), folders.end(), in("Applications")), folders.end());
  EXPECT_NE(std::find(folders.begin(), folders.end(), "/Applications"), folders.end());
  if (fs::exists("/Applications")) {
    EXPECT_EQ(workspace.localApplicationsDirectory(), "/Applications");
    return;
  }
  EXPECT_EQ(workspace.localApplicationsDirectory(), in("Applications"));
  EXPECT_TRUE(fs::is_directory(in("Applications")));
  fs::remove(in("Applications"));
  put(in("Applications"), "a file in the way");
  EXPECT_EQ(workspace.localApplicationsDirectory(), std::nullopt);
}

TEST_F(WorkspaceTest, OpensThings) {
  const std::string heard = in("heard");
  const Variable path("PATH", in("bin") + ":/usr/bin:/bin");
  const Variable desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
  program(in("Night's.app/Contents/Linux/Program"), heard);
  put(in("Night's.app/Contents/Info.plist"),
      "<plist version=\"1.0\"><dict><key>CFBundleExecutable</key><string>Program</string></dict></plist>");
  EXPECT_TRUE(workspace.open(in("Night's.app")));
  EXPECT_EQ(heardIn(heard), "\n");
  fs::create_directories(in("Broken.app/Contents"));
  EXPECT_FALSE(workspace.open(in("Broken.app")));
  EXPECT_EQ(output.errors.size(), 1U);

  for (const char* name : {"xdg-open", "gnome-control-center", "systemsettings", "xfce4-settings-manager"}) {
    program(in("bin/") + name, heard);
  }
  EXPECT_TRUE(workspace.open("https://example.com/?a=b&c='d'"));
  EXPECT_EQ(heardIn(heard), "https://example.com/?a=b&c='d'\n");

  // What is installed decides among the programs of one desktop; where nothing is, one line says so.
  const std::string address = "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
  const struct {
    const char* desktop;
    const char* accessibility;  // the arguments, or null for none
    const char* autostart;
  } cases[] = {{"ubuntu:GNOME", "universal-access\n", nullptr},
               {"KDE", "kcm_access\n", "kcm_autostart\n"},
               {"XFCE", "\n", nullptr},
               {"Budgie:GNOME", "universal-access\n", nullptr},
               {"i3", nullptr, nullptr},
               {"", nullptr, nullptr}};
  freedesktop::AutostartLoginItems loginItems(children, output);
  for (const auto& example : cases) {
    SCOPED_TRACE(example.desktop);
    const Variable current("XDG_CURRENT_DESKTOP", example.desktop);
    output.errors.clear();
    EXPECT_EQ(workspace.open(address), example.accessibility != nullptr);
    if (example.accessibility != nullptr) {
      EXPECT_EQ(heardIn(heard), example.accessibility);
    }
    EXPECT_EQ(loginItems.pageName(), example.autostart == nullptr ? "" : "Autostart");
    loginItems.openSettings();
    if (example.autostart != nullptr) {
      EXPECT_EQ(heardIn(heard), example.autostart);
    }
    EXPECT_EQ(output.errors.size(),
              (example.accessibility == nullptr ? 1U : 0U) + (example.autostart == nullptr ? 1U : 0U));
  }
}

TEST_F(WorkspaceTest, AsksTheAdministrator) {
  const std::string heard = in("heard");
  const std::string command = "rm -rf '/Applications/Night'\\''s Dormel.app' && true";
  const struct {
    const char* ending;
    int code;
    const char* message;  // how it begins, or null for none
  } cases[] = {{"exit 0", 0, nullptr},
               {"exit 126", 126, "The administrator's password"},
               {"exit 127", 127, "The administrator's rights"},
               {"echo 'cp: cannot create: No space left on device' >&2; exit 1", 1, "cp: cannot create"},
               {"exit 3", 3, nullptr}};
  const Variable path("PATH", in("bin") + ":/usr/bin:/bin");
  for (const auto& example : cases) {
    SCOPED_TRACE(example.ending);
    program(in("bin/pkexec"), heard, example.ending);
    const auto error = workspace.runAsAdministrator(command);
    EXPECT_EQ(heardIn(heard), "/bin/sh\n-c\n" + command + "\n");
    EXPECT_EQ(error ? error->code : 0, example.code);
    if (!error) continue;
    EXPECT_EQ(error->message.has_value(), example.message != nullptr);
    if (example.message != nullptr) {
      EXPECT_TRUE(error->message->starts_with(example.message)) << *error->message;
    }
  }
  const Variable nothing("PATH", in("empty"));
  const auto missing = workspace.runAsAdministrator(command);
  ASSERT_TRUE(missing);
  EXPECT_TRUE(missing->message.has_value());
}

TEST_F(WorkspaceTest, IsListedWhereItStandsAndForgottenWithoutATrace) {
  // Folders that were here before stay, empty ones too; so does one that somebody else uses by then.
  fs::create_directories(in(".config/autostart"));
  fs::create_directories(in(".local/share"));
  put(in(".config/other"), "x");
  auto before = listing(home.path());
  const std::string entry = in(std::string(".local/share/applications/") + BUNDLE_IDENTIFIER + ".desktop");
  for (const char* name : {"Applications/Dormel.app", "Other 100%/Night's $Dormel.app"}) {
    const std::string bundle = in(name);
    fs::create_directories(fs::path(bundle).parent_path());
    application(bundle);
    put(bundle + "/Contents/Resources/dormel.svg", "<svg/>");
    fs::copy(DORMEL_TEXTS, bundle + "/Contents/Resources/texts");
    put(bundle + "/Contents/Resources/texts/nl.mo", "damaged");
    workspace.registerApplication(bundle);
    const auto written = listing(home.path());
    workspace.registerApplication(bundle);
    EXPECT_EQ(listing(home.path()), written) << "nothing to do the second time";
    const std::string program = fs::path(bundle).stem().string();
    EXPECT_NE(contents(entry).find("\nComment[de]=Sperrt diesen Computer"), std::string::npos) << contents(entry);
    EXPECT_EQ(contents(entry).find("[nl]"), std::string::npos);
    EXPECT_NE(contents(entry).find(bundle + "/Contents/Linux/" + program), std::string::npos) << contents(entry);
    fs::remove_all(fs::path(bundle).parent_path());
  }
  EXPECT_NE(contents(entry).find("\nExec=\"" +
                                 in("Other 100%%/Night's \\\\$Dormel.app/Contents/Linux/Night's \\\\$Dormel") + "\"\n"),
            std::string::npos);
  EXPECT_EQ(contents(in(std::string(".local/share/icons/hicolor/scalable/apps/") + BUNDLE_IDENTIFIER + ".svg")),
            "<svg/>");

  freedesktop::replaceTextFile(in("Library/Logs/Dormel/dormel.log"), "x");
  fs::remove_all(in("Library/Logs/Dormel"));
  put(in("Library/theirs"), "x");
  before["Library"] = listing(home.path())["Library"];
  before["Library/theirs"] = listing(home.path())["Library/theirs"];
  put(in(std::string(".config/autostart/") + BUNDLE_IDENTIFIER + ".desktop"), "[Desktop Entry]\nHidden=true\n");
  put(in(std::string(".") + BUNDLE_IDENTIFIER + "_0.session"), "");
  put(in(std::string(".") + BUNDLE_IDENTIFIER + "_0.window"), "");
  workspace.forgetApplication();
  EXPECT_EQ(listing(home.path()), before);
}

}  // namespace
}  // namespace dormel
