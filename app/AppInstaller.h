// Sees to it that the program runs from an applications folder: the scheduler's job names the executable's path, and a
// copy in the downloads folder or on a disk image would move or vanish. Main thread.
#pragma once

#include <string>

namespace dormel::AppInstaller {

/// True when the launch may go on. False from the wrong place: a scheduled run has ended the process with status 0
/// and one printed line; a user's run is being asked, and from there on the process ends in every case - moved and
/// opened again, handed over to a running copy, or quit (0), or failed (1).
[[nodiscard]] bool moveToApplicationsFolderIfNeeded(bool isScheduled);

/// Whether the bundle stands in one of the system's applications folders itself; sub-folders do not count.
[[nodiscard]] bool isInApplicationsFolder();

/// Whether the bundle may stay where it stands: there, or where the system's package put it.
[[nodiscard]] bool isInItsPlace();

/// Whether another bundle stands where a scheduled run of it locks.
[[nodiscard]] bool mayLock(const std::string& bundle);

/// Whether the bundle runs from a read-only disk image.
[[nodiscard]] bool isRunningFromDMG();

/// Lists the program in the desktop's menus, unless it stands in the wrong place or a package has listed it already.
void listInMenus();

/// What the administrator's shell is asked for: a copy of the bundle at `from` in the place of what stands at `to`,
/// which is where it was when anything fails.
[[nodiscard]] std::string replaceCommand(const std::string& from, const std::string& to);

/// Ends the process, and has the bundle at `path` opened once it is gone.
void relaunch(const std::string& path);

/// `text` as one word of the shell, whatever it holds.
[[nodiscard]] std::string shellQuoted(const std::string& text);

}  // namespace dormel::AppInstaller
