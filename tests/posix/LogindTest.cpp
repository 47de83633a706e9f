// Sleep and waking, as a system bus of the test's own tells of them.
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <string>

#include "platform/linux/freedesktop/Logind.h"
#include "tests/posix/PrivateBus.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

/// What logind says, from a process that has its name.
void announce(bool sleeping) {
  sd_bus* bus = nullptr;
  ASSERT_GE(sd_bus_open_system(&bus), 0);
  ASSERT_GE(sd_bus_request_name(bus, "org.freedesktop.login1", 0), 0);
  ASSERT_GE(sd_bus_emit_signal(bus, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep", "b",
                               sleeping ? 1 : 0),
            0);
  sd_bus_flush_close_unref(bus);
}

TEST(Logind, ComesBackWithTheBus) {
  const TemporaryHome home;
  PrivateBus bus(home.path(), "DBUS_SYSTEM_BUS_ADDRESS");
  EventLoop loop;
  std::string story;
  const freedesktop::Logind logind(
      loop, [&](bool sleeping) { story += sleeping ? "sleep " : "wake "; },
      [&](const char*) { story += "complaint "; });
  EXPECT_EQ(story, "complaint ");
  // Said again and again: it may look for the bus at any moment from now on.
  const auto hears = [&](bool sleeping, const std::string& word) {
    story.clear();
    const Timer said = Timer::repeating(loop, 0.02, [&] {
      if (story.empty()) announce(sleeping);
      if (!story.empty()) loop.stop();
    });
    const Timer end = Timer::once(loop, 10, [&] { loop.stop(); });
    loop.run();
    EXPECT_EQ(story.substr(0, story.find(' ')), word);
  };
  bus.start();
  hears(true, "sleep");
  bus.stop();
  bus.start();
  hears(false, "wake");
}

}  // namespace
}  // namespace dormel
