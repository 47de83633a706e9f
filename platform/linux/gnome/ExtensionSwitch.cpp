#include "platform/linux/gnome/ExtensionSwitch.h"

#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/Identifiers.h"
#include "platform/Process.h"
#include "platform/Texts.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/BusMessage.h"
#include "platform/linux/freedesktop/CreatedFolders.h"
#include "platform/linux/freedesktop/Programs.h"
#include "platform/linux/gnome/Link.h"
#include "platform/linux/posix/Environment.h"

namespace dormel::gnome {
namespace fs = std::filesystem;
namespace {

constexpr int FIRST_VERSION = 45;  // the first one that reads modules
constexpr std::uint64_t LIMIT_MICROSECONDS = 500'000;
// The shell's numbers for the states of an extension.
constexpr int ACTIVE = 1;
constexpr int FAILED = 3;
constexpr int OUT_OF_DATE = 4;
constexpr int ACTIVATING = 8;

constexpr const char* SHELL = "org.gnome.Shell";
constexpr freedesktop::BusObject SHELL_OBJECT{SHELL, "/org/gnome/Shell"};
constexpr const char* EXTENSIONS = "org.gnome.Shell.Extensions";
constexpr const char* PROGRAM = "gnome-extensions-app";
// Of the shell's settings. What is on the second list stays off, whatever the first one says.
constexpr const char* ENABLED = "enabled-extensions";
constexpr const char* DISABLED = "disabled-extensions";

const std::string& uuid() {
  static const std::string text = std::string("dormel@") + BUNDLE_IDENTIFIER;
  return text;
}

using freedesktop::BusMessage;

freedesktop::OwnedBus openBus() {
  auto bus = freedesktop::openSessionBus();
  if (bus) sd_bus_set_method_call_timeout(bus.get(), LIMIT_MICROSECONDS);
  return bus;
}

/// Null where nobody answers.
template <typename... Arguments>
BusMessage ask(sd_bus* bus, const char* interface, const char* method, const char* types, Arguments... arguments) {
  return freedesktop::busAnswer(bus, freedesktop::busCall(bus, SHELL_OBJECT, interface, method, types, arguments...));
}

BusMessage property(sd_bus* bus, const char* interface, const char* name) {
  return ask(bus, freedesktop::BUS_PROPERTIES, "Get", "ss", interface, name);
}

/// Calls `take` with each name whose value is a number.
template <typename Take>
void readNumbers(sd_bus_message* dictionary, Take take) {
  if (dictionary == nullptr || sd_bus_message_enter_container(dictionary, 'a', "{sv}") < 0) return;
  while (sd_bus_message_enter_container(dictionary, 'e', "sv") > 0) {
    const char* name = nullptr;
    const char* type = nullptr;
    if (sd_bus_message_read_basic(dictionary, 's', &name) < 0) return;
    if (sd_bus_message_peek_type(dictionary, nullptr, &type) > 0 && std::string_view(type) == "d") {
      double value = 0;
      if (sd_bus_message_read(dictionary, "v", "d", &value) < 0) return;
      take(std::string_view(name), value);
    } else if (sd_bus_message_skip(dictionary, "v") < 0) {
      return;
    }
    if (sd_bus_message_exit_container(dictionary) < 0) return;
  }
}

/// Where an extension lies below a folder of data.
std::string below(const std::string& data) { return data + "/gnome-shell/extensions/" + uuid(); }

std::string ownCopy() { return below(freedesktop::dataHome()); }

/// Of the extension in a folder; 0 where there is none.
int versionIn(const std::string& folder) {
  std::ifstream file(folder + "/metadata.json");
  const auto metadata = nlohmann::json::parse(file, nullptr, false);
  if (!metadata.is_object()) return 0;
  const auto version = metadata.find("version");
  return version != metadata.end() && version->is_number_integer() ? version->get<int>() : 0;
}

int versionOfSystem() {
  const std::string listed = posix::environmentVariable("XDG_DATA_DIRS");
  std::istringstream folders(listed.empty() ? "/usr/local/share:/usr/share" : listed);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (const int version = versionIn(below(folder)); version > 0) return version;
  }
  return 0;
}

/// What a setting of the shell is, at least its first lines; empty where nobody knows.
std::string setting(const char* key) {
  const std::string command = std::string("gsettings get org.gnome.shell ") + key + " 2> /dev/null";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "re"), &::pclose);  // NOLINT(cert-env33-c)
  std::array<char, 16384> text{};
  return pipe ? std::string(text.data(), std::fread(text.data(), 1, text.size(), pipe.get())) : std::string();
}

}  // namespace

ExtensionState stateOf(const ExtensionFacts& facts) {
  if (facts.shellVersion == 0) return ExtensionState::elsewhere;
  if (facts.shellVersion < FIRST_VERSION) return ExtensionState::tooOld;
  if (!facts.areAllowed) return facts.hasProgram ? ExtensionState::allOff : ExtensionState::allOffBare;
  if (!facts.state) return facts.waitingVersion > 0 ? ExtensionState::afterLogin : ExtensionState::absent;
  const int state = *facts.state;
  if (state == FAILED || state == OUT_OF_DATE) return ExtensionState::failed;
  if (state != ACTIVE && state != ACTIVATING) return ExtensionState::off;
  return facts.waitingVersion > facts.loadedVersion ? ExtensionState::onOlder : ExtensionState::on;
}

std::optional<std::string> listedIn(const std::string& list, const std::string& name) {
  const auto open = list.find('[');
  const auto close = list.rfind(']');
  if (open == std::string::npos || close == std::string::npos || close < open) return std::nullopt;
  const std::string items = list.substr(open + 1, close - open - 1);
  const std::string item = "'" + name + "'";
  if (items.find(item) != std::string::npos) return "[" + items + "]";
  return "[" + items + (items.find('\'') == std::string::npos ? "" : ", ") + item + "]";
}

std::optional<std::string> unlistedIn(const std::string& list, const std::string& name) {
  const std::string item = "'" + name + "'";
  const auto at = list.find(item);
  const auto close = list.rfind(']');
  if (at == std::string::npos || close == std::string::npos || close < at) return std::nullopt;
  std::string before = list.substr(0, at);
  std::string after = list.substr(at + item.size(), close + 1 - at - item.size());
  // One comma goes with it: the one behind it, or that before the last.
  if (const auto next = after.find_first_not_of(", "); next != std::string::npos) after.erase(0, next);
  if (after == "]") before.erase(before.find_last_not_of(", ") + 1);
  return before + after;
}

ExtensionSwitch::ExtensionSwitch(ChildProcesses& children, std::string resources)
    : children_(children), resources_(std::move(resources)) {}

ExtensionFacts ExtensionSwitch::facts() const {
  ExtensionFacts facts;
  if (!isSession()) return facts;
  const auto bus = openBus();
  const char* version = nullptr;
  const BusMessage shell = property(bus.get(), SHELL, "ShellVersion");
  if (!shell || sd_bus_message_read(shell.get(), "v", "s", &version) < 0) return facts;
  const std::string_view text(version);
  std::from_chars(text.data(), text.data() + text.size(), facts.shellVersion);
  int isAllowed = 1;
  const BusMessage allowed = property(bus.get(), EXTENSIONS, "UserExtensionsEnabled");
  if (allowed && sd_bus_message_read(allowed.get(), "v", "b", &isAllowed) >= 0) facts.areAllowed = isAllowed != 0;
  facts.hasProgram = freedesktop::findProgram(PROGRAM).has_value();
  const BusMessage info = ask(bus.get(), EXTENSIONS, "GetExtensionInfo", "s", uuid().c_str());
  readNumbers(info.get(), [&](std::string_view name, double value) {
    if (name == "state") facts.state = static_cast<int>(value);
    if (name == "version") facts.loadedVersion = static_cast<int>(value);
  });
  const int own = versionIn(ownCopy());  // the shell prefers it
  facts.waitingVersion = own > 0 ? own : versionOfSystem();
  return facts;
}

ExtensionState ExtensionSwitch::state() const { return stateOf(facts()); }

bool ExtensionSwitch::copy() const {
  const fs::path target = ownCopy();
  const fs::path fresh = ownCopy() + ".new";
  std::error_code error;
  std::vector<fs::path> missing;
  for (fs::path folder = target.parent_path(); !fs::exists(folder, error); folder = folder.parent_path()) {
    missing.push_back(folder);
  }
  fs::create_directories(target.parent_path(), error);
  for (auto folder = missing.rbegin(); !error && folder != missing.rend(); ++folder) {
    freedesktop::noteCreatedFolder(folder->string());
  }
  fs::remove_all(fresh, error);
  fs::copy(resources_, fresh, fs::copy_options::recursive, error);
  if (error) {
    std::error_code ignored;
    fs::remove_all(fresh, ignored);
    return false;
  }
  fs::remove_all(target, error);
  fs::rename(fresh, target, error);
  return !error;
}

bool ExtensionSwitch::list() {
  const auto list = listedIn(setting(ENABLED), uuid());
  return list && set(ENABLED, *list) && unlist(DISABLED);
}

bool ExtensionSwitch::unlist(const char* key) {
  const auto list = unlistedIn(setting(key), uuid());
  return !list || set(key, *list);
}

bool ExtensionSwitch::set(const char* key, const std::string& value) {
  const auto tool = freedesktop::findProgram("gsettings");
  return tool && children_.run(*tool, {"set", "org.gnome.shell", key, value}) == 0;
}

bool ExtensionSwitch::lead() {
  switch (state()) {
    case ExtensionState::elsewhere:
    case ExtensionState::tooOld:
    case ExtensionState::failed:
      return false;
    case ExtensionState::on:
    case ExtensionState::onOlder:
      return true;
    case ExtensionState::allOff: {
      const auto program = freedesktop::findProgram(PROGRAM);
      return program && children_.start(*program, {});
    }
    case ExtensionState::allOffBare:
      return set("disable-user-extensions", "false") && (facts().waitingVersion > 0 || copy()) && list();
    case ExtensionState::absent:
      return copy() && list();
    case ExtensionState::afterLogin:
      return list();
    case ExtensionState::off:
      break;
  }
  const auto bus = openBus();
  int isDone = 0;
  const BusMessage reply = ask(bus.get(), EXTENSIONS, "EnableExtension", "s", uuid().c_str());
  return reply && sd_bus_message_read(reply.get(), "b", &isDone) >= 0 && isDone != 0;
}

void ExtensionSwitch::refreshCopy() const {
  const int copied = versionIn(ownCopy());
  const int carried = versionIn(resources_);
  if (copied > 0 && carried > 0 && copied != carried) static_cast<void>(copy());
}

void ExtensionSwitch::remove() {
  std::error_code ignored;
  const bool isOurs = fs::exists(ownCopy(), ignored);
  // By the settings, which the shell follows: asked to disable it, it does nothing before the login that finds it, and
  // afterwards it would keep it on the second list, where it would be off when it comes again.
  if (isOurs || isSession()) {
    static_cast<void>(unlist(ENABLED));
    static_cast<void>(unlist(DISABLED));
  }
  if (isOurs) fs::remove_all(ownCopy(), ignored);
}

std::string advice(ExtensionState state) {
  switch (state) {
    case ExtensionState::elsewhere:
    case ExtensionState::on:
      return {};
    case ExtensionState::onOlder:
      return translatable(
          "A newer extension of Dormel takes over when you log in the next time. Until then the older one does its "
          "work.");
    case ExtensionState::tooOld:
      return translatable(
          "This version of GNOME lets no program lock a Wayland session. Log out, and at the login screen choose "
          "\"GNOME on Xorg\" behind the gear wheel.");
    case ExtensionState::allOff:
      return translatable(
          "GNOME's extensions are all switched off, and Dormel's with them. Open the program Extensions, and switch "
          "them on at the top.");
    case ExtensionState::allOffBare:
      return translatable(
          "GNOME's extensions are all switched off, and Dormel's with them. Dormel can switch them all on again.");
    case ExtensionState::failed:
      return translatable(
          "GNOME cannot run Dormel's extension. A newer Dormel may be made for this version of GNOME; until then, "
          "choose \"GNOME on Xorg\" at the login screen.");
    case ExtensionState::off:
      return translatable(
          "Dormel's extension of GNOME is switched off. Open the program Extensions, and switch Dormel on.");
    case ExtensionState::absent:
      return translatable(
          "Dormel locks a GNOME session by a small extension of it, which is not there yet. Once it is, log out and "
          "in again.");
    case ExtensionState::afterLogin:
      break;
  }
  return translatable(
      "Dormel's extension of GNOME is in its place. GNOME looks for new ones only when you log in: log out and in "
      "again once, and Dormel can lock.");
}

}  // namespace dormel::gnome
