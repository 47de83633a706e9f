// A bus of the test's own in the place of the session's or the system's, for as long as it is started.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <utility>

#include "tests/posix/TemporaryHome.h"

namespace dormel {

class PrivateBus {
 public:
  /// `variable` is what clients find it by: DBUS_SYSTEM_BUS_ADDRESS or DBUS_SESSION_BUS_ADDRESS.
  PrivateBus(const std::string& folder, const char* variable)
      : socket_(folder + "/bus"), address_(variable, "unix:path=" + socket_) {}
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;
  ~PrivateBus() { stop(); }

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

 private:
  std::string socket_;
  Variable address_;
  pid_t daemon_ = -1;
};

}  // namespace dormel
