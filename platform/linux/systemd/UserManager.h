// The user's service manager, over its bus. Every call waits for its answer, five seconds at most.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct sd_bus;
struct sd_bus_slot;

namespace dormel::jobs::systemd {

struct UnitState {
  std::string load;      ///< "loaded", "not-found", ...
  std::string active;    ///< "active", "activating", "inactive", "failed", ...
  std::string sub;       ///< finer: "running", "auto-restart", "waiting", ...
  std::string fragment;  ///< path of the unit file
  std::string source;    ///< path of what the unit file was derived from
  bool stale = false;    ///< the files are newer than what the manager has read
};

struct ServiceState {
  pid_t mainProcess = 0;  ///< 0 when none runs
  int exitCode = 0;       ///< how the last one ended, CLD_EXITED and so on; 0 when none did
  int exitStatus = 0;
};

class UserManager {
 public:
  /// Null when no manager answers.
  [[nodiscard]] static std::unique_ptr<UserManager> connect();

  UserManager(const UserManager&) = delete;
  UserManager& operator=(const UserManager&) = delete;
  ~UserManager();

  /// Whether unit files in `folder` (which exists) are read by this manager. One that was started for another
  /// home folder does not, and cannot keep our jobs.
  [[nodiscard]] bool readsUnitsIn(const std::string& folder);

  /// Reads all unit files afresh.
  bool reload();
  /// What it gives to all that it starts: "NAME=value". Desktops put their display into it.
  [[nodiscard]] std::vector<std::string> environment();

  [[nodiscard]] UnitState unit(const std::string& name);
  [[nodiscard]] ServiceState service(const std::string& name);
  /// Microseconds since 1970; 0 when the timer is not waiting for anything.
  [[nodiscard]] std::uint64_t nextElapse(const std::string& timer);

  /// These wait until the manager is done with it; true when it succeeded.
  bool start(const std::string& unit) { return runJob("StartUnit", unit); }
  bool stop(const std::string& unit) { return runJob("StopUnit", unit); }
  bool restart(const std::string& unit) { return runJob("RestartUnit", unit); }
  /// Forgets that the unit once failed.
  void resetFailed(const std::string& unit);

 private:
  explicit UserManager(sd_bus* bus);
  bool runJob(const char* method, const std::string& unit);
  [[nodiscard]] std::string unitObject(const std::string& name);
  [[nodiscard]] std::string text(const std::string& object, const char* interface, const char* property);
  template <typename T>
  [[nodiscard]] T figure(const std::string& object, const char* interface, const char* property, char type);

  sd_bus* bus_;
  sd_bus_slot* jobsRemoved_ = nullptr;
  std::vector<std::pair<std::string, std::string>> finished_;  ///< job and result, since the last one was asked for
};

}  // namespace dormel::jobs::systemd
