// What a settings portal of the test's own says of contrast and motion.
#include "platform/linux/freedesktop/DesktopLook.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <systemd/sd-bus.h>

#include <chrono>
#include <map>
#include <string>

#include "tests/posix/PrivateBus.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

constexpr const char* CONTRAST = "org.freedesktop.appearance contrast";
constexpr const char* REDUCED = "org.freedesktop.appearance reduced-motion";
constexpr const char* ANIMATIONS = "org.gnome.desktop.interface enable-animations";

struct Answers {
  std::map<std::string, std::uint32_t> numbers;
  std::map<std::string, bool> flags;
  bool isWrapped = false;  // once more, as old portals do
  bool isSilent = false;
};

int answer(sd_bus_message* question, void* data, sd_bus_error* /*error*/) {
  const Answers& answers = *static_cast<const Answers*>(data);
  if (sd_bus_message_is_method_call(question, "org.freedesktop.portal.Settings", "Read") <= 0) return 0;
  if (answers.isSilent) return 1;
  const char* group = nullptr;
  const char* key = nullptr;
  sd_bus_message_read(question, "ss", &group, &key);
  const std::string name = std::string(group) + " " + key;
  if (const auto number = answers.numbers.find(name); number != answers.numbers.end()) {
    return answers.isWrapped ? sd_bus_reply_method_return(question, "v", "v", "u", number->second)
                             : sd_bus_reply_method_return(question, "v", "u", number->second);
  }
  if (const auto flag = answers.flags.find(name); flag != answers.flags.end()) {
    return sd_bus_reply_method_return(question, "v", "b", flag->second ? 1 : 0);
  }
  return sd_bus_reply_method_errorf(question, "org.freedesktop.portal.Error.NotFound", "no such setting");
}

/// A process with the portal's name, until it is killed. It is there when this returns.
pid_t portal(Answers answers) {
  int ready[2];
  if (::pipe(ready) != 0) return -1;
  const pid_t child = ::fork();
  if (child == 0) {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) ::_exit(1);
    sd_bus_add_object(bus, nullptr, "/org/freedesktop/portal/desktop", answer, &answers);
    if (sd_bus_request_name(bus, "org.freedesktop.portal.Desktop", 0) < 0) ::_exit(1);
    if (::write(ready[1], "x", 1) != 1) ::_exit(1);
    while (sd_bus_wait(bus, UINT64_MAX) >= 0) {
      while (sd_bus_process(bus, nullptr) > 0) {
      }
    }
    ::_exit(0);
  }
  ::close(ready[1]);
  char byte = 0;
  EXPECT_EQ(::read(ready[0], &byte, 1), 1);
  ::close(ready[0]);
  return child;
}

TEST(DesktopLook, IsWhatThePortalSays) {
  const TemporaryHome home;
  PrivateBus bus(home.path(), "DBUS_SESSION_BUS_ADDRESS");
  const auto look = [] { return freedesktop::desktopLook(); };
  EXPECT_FALSE(look().highContrast || look().reducedMotion) << "without a bus";
  bus.start();
  EXPECT_FALSE(look().highContrast || look().reducedMotion) << "without a portal";
  const struct {
    const char* name;
    Answers answers;
    bool highContrast;
    bool reducedMotion;
  } rows[] = {
      {"nothing special", {{{CONTRAST, 0}, {REDUCED, 0}}, {{ANIMATIONS, true}}}, false, false},
      {"high contrast", {{{CONTRAST, 1}}, {}}, true, false},
      {"of an old portal", {{{CONTRAST, 1}, {REDUCED, 1}}, {}, true}, true, true},
      {"no animations", {{}, {{ANIMATIONS, false}}}, false, true},
      {"of a kind that nobody expects", {{{REDUCED, 7}}, {{CONTRAST, true}}}, true, false},
      {"silent", {{{CONTRAST, 1}}, {}, false, true}, false, false},
  };
  for (const auto& row : rows) {
    const pid_t process = portal(row.answers);
    const auto began = std::chrono::steady_clock::now();
    const freedesktop::DesktopLook seen = look();
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(2)) << row.name;
    EXPECT_EQ(seen.highContrast, row.highContrast) << row.name;
    EXPECT_EQ(seen.reducedMotion, row.reducedMotion) << row.name;
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
  }
}

}  // namespace
}  // namespace dormel
