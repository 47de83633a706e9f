// Sleep and waking, as a system bus of the test's own tells of them.
#include <gtest/gtest.h>
#include <signal.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/linux/freedesktop/Logind.h"
#include "tests/posix/Child.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

class SystemBus {
 public:
  explicit SystemBus(const std::string& folder) : socket_(folder + "/bus") {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + socket_).c_str(), 1);
  }
  ~SystemBus() {
    stop();
    ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
  }

  void start() {
    daemon_ = ::fork();
    if (daemon_ == 0) {
      const std::string address = "--address=unix:path=" + socket_;
      ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog", address.c_str(),
               nullptr);
      ::_exit(127);
    }
    while (::waitpid(daemon_, nullptr, WNOHANG) == 0 && !std::filesystem::exists(socket_)) ::usleep(1000);
  }
  void stop() {
    if (daemon_ <= 0) return;
    ::kill(daemon_, SIGKILL);
    ::waitpid(std::exchange(daemon_, -1), nullptr, 0);
    std::filesystem::remove(socket_);
  }

  /// What logind says, from a process that has its name.
  static void announce(bool sleeping) {
    sd_bus* bus = nullptr;
    ASSERT_GE(sd_bus_open_system(&bus), 0);
    ASSERT_GE(sd_bus_request_name(bus, "org.freedesktop.login1", 0), 0);
    ASSERT_GE(sd_bus_emit_signal(bus, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                                 "b", sleeping ? 1 : 0),
              0);
    sd_bus_flush_close_unref(bus);
  }

 private:
  std::string socket_;
  pid_t daemon_ = -1;
};

TEST(Logind, ComesBackWithTheBus) {
  const TemporaryHome home;
  SystemBus bus(home.path());
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
      if (story.empty()) SystemBus::announce(sleeping);
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
