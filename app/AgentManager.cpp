#include "app/AgentManager.h"

#include "app/AppInstaller.h"
#include "app/CommandLine.h"
#include "core/Config.h"
#include "core/Constants.h"
#include "core/DebugLog.h"
#include "platform/Bundle.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/Workspace.h"

namespace dormel::AgentManager {
namespace {

constexpr const char* TOOL = "/bin/launchctl";

std::string folder() { return platform().files.homeDirectory() + "/Library/LaunchAgents"; }

std::string domainTarget() { return "gui/" + std::to_string(platform().process.userId()); }

std::string serviceTarget() { return domainTarget() + "/" + BUNDLE_IDENTIFIER; }

/// The program that the stored job starts.
std::optional<std::string> storedProgram() {
  const auto xml = platform().files.read(plistPath());
  const auto job = xml ? readXmlPropertyList(*xml) : std::nullopt;
  const auto* entries = job ? job->as<PropertyListDictionary>() : nullptr;
  if (entries == nullptr || !entries->contains("ProgramArguments")) return {};
  const auto* arguments = entries->at("ProgramArguments").as<PropertyListArray>();
  const auto* program = arguments == nullptr || arguments->empty() ? nullptr : arguments->front().as<std::string>();
  return program == nullptr ? std::nullopt : std::optional(*program);
}

}  // namespace

std::string executablePath() {
  if (const auto executable = platform().bundle.executablePath()) return *executable;
  return cliArgs.empty() ? std::string() : cliArgs.front();
}

std::string bundleOf(const std::string& executable) { return executable.substr(0, executable.rfind("/Contents/")); }

std::string plistPath() { return folder() + "/" + BUNDLE_IDENTIFIER + ".plist"; }

PropertyListDictionary plistDictionary(const std::string& executable) {
  Config::ensureLogDirectory();
  const auto text = [](const std::string& value) { return PropertyListValue{value}; };
  return {
      {"Label", text(BUNDLE_IDENTIFIER)},
      {"ProgramArguments", {PropertyListArray{text(executable), text("--scheduled")}}},
      {"StartCalendarInterval",
       {PropertyListDictionary{{"Hour", {std::int64_t{Config::startHour()}}}, {"Minute", {std::int64_t{0}}}}}},
      {"RunAtLoad", {true}},
      {"KeepAlive", {PropertyListDictionary{{"SuccessfulExit", {false}}}}},
      {"StandardOutPath", text(Config::stdoutLogPath())},
      {"StandardErrorPath", text(Config::stdoutLogPath())},
      {"AssociatedBundleIdentifiers", {PropertyListArray{text(BUNDLE_IDENTIFIER)}}},
  };
}

bool install(const std::string& executable) {
  Files& files = platform().files;
  const PropertyListDictionary job = plistDictionary(executable);
  const auto xml = writeXmlPropertyList({job});
  if (!xml) {
    platform().output.print("AgentManager: failed to serialise plist");
    return false;
  }
  auto error = files.createDirectories(folder(), 0777);
  // In one step: the list that stood there is what brings the lock back at the next login, should the disk be full.
  if (!error) error = files.writeAtomically(plistPath(), *xml);
  if (error) {
    platform().output.print("AgentManager: failed to write plist: " + error->message);
    return false;
  }
  return reload();
}

std::optional<std::string> otherCopy() {
  const auto program = storedProgram();
  if (!program || !platform().files.exists(*program)) return {};
  if (platform().workspace.isSameFile(*program, executablePath())) return {};
  // One that lies in the wrong place refuses to lock.
  return AppInstaller::mayLock(bundleOf(*program)) ? program : std::nullopt;
}

bool rearm() { return install(otherCopy().value_or(executablePath())); }

bool reload() {
  run(TOOL, {"bootout", serviceTarget()});
  const std::int32_t status = run(TOOL, {"bootstrap", domainTarget(), plistPath()});
  if (status == 0) return true;
  platform().output.print("AgentManager: bootstrap FAILED (exit " + std::to_string(status) +
                          ") — agent NOT loaded, Dormel will not fire tonight");
  DebugLog::shared().append("agent bootstrap FAILED exit=" + std::to_string(status));
  return false;
}

bool uninstall() {
  run(TOOL, {"bootout", serviceTarget()});
  platform().files.remove(plistPath());
  return true;
}

bool isLoaded() { return run(TOOL, {"print", serviceTarget()}) == 0; }

std::int32_t run(const std::string& tool, const std::vector<std::string>& arguments) {
  return platform().childProcesses.run(tool, arguments);
}

}  // namespace dormel::AgentManager
