// A bus of the test's own in the place of the session's or the system's, for as long as it is started.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

namespace dormel {

class PrivateBus {
 public:
  /// `variable` is what clients find it by: DBUS_SYSTEM_BUS_ADDRESS or DBUS_SESSION_BUS_ADDRESS.
  PrivateBus(const std::string& folder, const char* variable) : variable_(variable), socket_(folder + "/bus") {
    if (const char* before = std::getenv(variable)) before_ = before;
    ::setenv(variable_, ("unix:path=" + socket_).c_str(), 1);
  }
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;
  ~PrivateBus() {
    stop();
    before_.empty() ? ::unsetenv(variable_) : ::setenv(variable_, before_.c_str(), 1);
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

 private:
  const char* variable_;
  std::string socket_;
  std::string before_;
  pid_t daemon_ = -1;
};

}  // namespace dormel
