#include "platform/linux/systemd/UserManager.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/BusMessage.h"

namespace dormel::jobs::systemd {
namespace {

constexpr const char* NAME = "org.freedesktop.systemd1";
constexpr const char* OBJECT = "/org/freedesktop/systemd1";
constexpr const char* MANAGER = "org.freedesktop.systemd1.Manager";
constexpr const char* UNIT = "org.freedesktop.systemd1.Unit";
constexpr std::uint64_t ANSWER_TIMEOUT_US = 5'000'000;
// A stop takes as long as the unit's own limit allows, and a little more.
constexpr auto JOB_TIMEOUT = std::chrono::seconds(15);

using freedesktop::BusMessage;
using freedesktop::OwnedBus;

/// `path` as a bus address takes it.
std::string addressOf(const std::string& path) {
  std::string address = "unix:path=";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || c == '/' || c == '-' || c == '_' || c == '.') {
      address += c;
    } else {
      char escape[4];
      std::snprintf(escape, sizeof escape, "%%%02x", byte);
      address += escape;
    }
  }
  return address;
}

/// The manager's own socket, which is there without any message bus.
OwnedBus openOwnSocket() {
  sd_bus* made = nullptr;
  if (sd_bus_new(&made) < 0) return nullptr;
  OwnedBus bus(made);
  const std::string address = addressOf(freedesktop::runtimeDirectory() + "/systemd/private");
  if (sd_bus_set_address(made, address.c_str()) < 0 || sd_bus_start(made) < 0) bus.reset();
  return bus;
}

template <typename... Arguments>
BusMessage ask(sd_bus* bus, const char* method, const char* types, Arguments... arguments) {
  return freedesktop::busAnswer(bus, freedesktop::busCall(bus, {NAME, OBJECT}, MANAGER, method, types, arguments...));
}

bool answers(sd_bus* bus) {
  sd_bus_set_method_call_timeout(bus, ANSWER_TIMEOUT_US);
  char* version = nullptr;
  const bool good = sd_bus_get_property_string(bus, NAME, OBJECT, MANAGER, "Version", nullptr, &version) >= 0;
  std::free(version);
  return good;
}

}  // namespace

std::unique_ptr<UserManager> UserManager::connect() {
  for (const auto open : {&openOwnSocket, &freedesktop::openSessionBus}) {
    OwnedBus bus = open();
    if (bus && answers(bus.get())) return std::unique_ptr<UserManager>(new UserManager(bus.release()));
  }
  return nullptr;
}

UserManager::UserManager(sd_bus* bus) : bus_(bus) {
  const auto note = [](sd_bus_message* message, void* self, sd_bus_error*) {
    std::uint32_t id = 0;
    const char* job = nullptr;
    const char* unit = nullptr;
    const char* result = nullptr;
    if (sd_bus_message_read(message, "uoss", &id, &job, &unit, &result) >= 0) {
      static_cast<UserManager*>(self)->finished_.emplace_back(job, result);
    }
    return 0;
  };
  sd_bus_match_signal(bus_, &jobsRemoved_, nullptr, OBJECT, MANAGER, "JobRemoved", note, this);
  static_cast<void>(ask(bus_, "Subscribe", ""));
}

UserManager::~UserManager() {
  sd_bus_slot_unref(jobsRemoved_);
  sd_bus_flush_close_unref(bus_);
}

bool UserManager::readsUnitsIn(const std::string& folder) {
  char** paths = nullptr;
  if (sd_bus_get_property_strv(bus_, NAME, OBJECT, MANAGER, "UnitPath", nullptr, &paths) < 0) return false;
  bool found = false;
  std::error_code ignored;
  for (char** path = paths; path != nullptr && *path != nullptr; ++path) {
    found = found || std::filesystem::equivalent(*path, folder, ignored);
    std::free(*path);
  }
  std::free(paths);
  return found;
}

bool UserManager::reload() { return ask(bus_, "Reload", "") != nullptr; }

std::vector<std::string> UserManager::environment() {
  std::vector<std::string> entries;
  char** strings = nullptr;
  if (sd_bus_get_property_strv(bus_, NAME, OBJECT, MANAGER, "Environment", nullptr, &strings) < 0) return entries;
  for (char** entry = strings; entry != nullptr && *entry != nullptr; ++entry) {
    entries.emplace_back(*entry);
    std::free(*entry);
  }
  std::free(strings);
  return entries;
}

std::string UserManager::unitObject(const std::string& name) {
  const char* object = nullptr;
  const BusMessage reply = ask(bus_, "LoadUnit", "s", name.c_str());
  return reply && sd_bus_message_read(reply.get(), "o", &object) >= 0 ? object : std::string();
}

std::string UserManager::text(const std::string& object, const char* interface, const char* property) {
  if (object.empty()) return {};
  char* value = nullptr;
  if (sd_bus_get_property_string(bus_, NAME, object.c_str(), interface, property, nullptr, &value) < 0) return {};
  std::string copy = value;
  std::free(value);
  return copy;
}

template <typename T>
T UserManager::figure(const std::string& object, const char* interface, const char* property, char type) {
  T value{};
  if (object.empty() ||
      sd_bus_get_property_trivial(bus_, NAME, object.c_str(), interface, property, nullptr, type, &value) < 0) {
    return T{};
  }
  return value;
}

UnitState UserManager::unit(const std::string& name) {
  const std::string object = unitObject(name);
  return {text(object, UNIT, "LoadState"),  text(object, UNIT, "ActiveState"),
          text(object, UNIT, "SubState"),   text(object, UNIT, "FragmentPath"),
          text(object, UNIT, "SourcePath"), figure<int>(object, UNIT, "NeedDaemonReload", SD_BUS_TYPE_BOOLEAN) != 0};
}

ServiceState UserManager::service(const std::string& name) {
  constexpr const char* interface = "org.freedesktop.systemd1.Service";
  const std::string object = unitObject(name);
  return {static_cast<pid_t>(figure<std::uint32_t>(object, interface, "MainPID", SD_BUS_TYPE_UINT32)),
          figure<std::int32_t>(object, interface, "ExecMainCode", SD_BUS_TYPE_INT32),
          figure<std::int32_t>(object, interface, "ExecMainStatus", SD_BUS_TYPE_INT32)};
}

std::uint64_t UserManager::nextElapse(const std::string& timer) {
  const auto moment = figure<std::uint64_t>(unitObject(timer), "org.freedesktop.systemd1.Timer",
                                            "NextElapseUSecRealtime", SD_BUS_TYPE_UINT64);
  return moment == UINT64_MAX ? 0 : moment;
}

bool UserManager::runJob(const char* method, const std::string& unit) {
  const char* job = nullptr;
  finished_.clear();
  const BusMessage reply = ask(bus_, method, "ss", unit.c_str(), "replace");
  if (!reply || sd_bus_message_read(reply.get(), "o", &job) < 0) return false;
  const auto deadline = std::chrono::steady_clock::now() + JOB_TIMEOUT;
  for (;;) {
    const auto end = std::find_if(finished_.begin(), finished_.end(), [&](const auto& f) { return f.first == job; });
    if (end != finished_.end()) return end->second == "done";
    const int processed = sd_bus_process(bus_, nullptr);
    if (processed < 0) return false;
    if (processed > 0) continue;
    const auto left = deadline - std::chrono::steady_clock::now();
    if (left.count() <= 0) return false;
    const auto wait = std::chrono::duration_cast<std::chrono::microseconds>(left).count();
    if (sd_bus_wait(bus_, static_cast<std::uint64_t>(wait)) < 0) return false;
  }
}

void UserManager::resetFailed(const std::string& unit) {
  static_cast<void>(ask(bus_, "ResetFailedUnit", "s", unit.c_str()));
}

}  // namespace dormel::jobs::systemd
