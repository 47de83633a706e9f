// The scheduler's job: writes its property list, loads and unloads it, and asks whether it is loaded. Holds nothing;
// every call looks at the defaults store, the disk and the scheduler afresh. Main thread; every call waits for the
// scheduler tool.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/PropertyList.h"

namespace dormel::AgentManager {

/// The program that the job starts: this bundle's executable, else the path this process was started by.
[[nodiscard]] std::string executablePath();
/// The bundle that an executable lies in.
[[nodiscard]] std::string bundleOf(const std::string& executable);
/// "~/Library/LaunchAgents/<BUNDLE_IDENTIFIER>.plist"
[[nodiscard]] std::string plistPath();
/// The job: at the stored start hour, at load, and again after any end but status 0. Creates the log folder, so that
/// the scheduler can create the log.
[[nodiscard]] PropertyListDictionary plistDictionary(const std::string& executable = executablePath());

/// Writes the property list, for this program or for the copy of it whose executable is named, and reloads the job;
/// false, with one printed line, when it is not loaded afterwards.
bool install(const std::string& executable = executablePath());
/// The program of another copy of Dormel that the stored job starts, where that copy is there and would lock.
[[nodiscard]] std::optional<std::string> otherCopy();
/// Writes and reloads the job for whichever copy has it: another one, else this one. As `install`.
bool rearm();
/// Unloads the job if it is loaded, and loads it.
bool reload();
/// Unloads the job and deletes its property list. Always true.
bool uninstall();
[[nodiscard]] bool isLoaded();

/// The exit status of an external program; -1 when it could not be started.
std::int32_t run(const std::string& tool, const std::vector<std::string>& arguments);

}  // namespace dormel::AgentManager
