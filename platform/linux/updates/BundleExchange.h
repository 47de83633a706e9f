// Putting one bundle in the place of another.
#pragma once

#include <string>

#include "platform/Files.h"

namespace dormel::updates {

/// Exchanges the bundles at the two paths of one file system. In one step where the file system can; otherwise the old
/// one waits at `aside` between two renames, and `repairExchange` brings it back if the process dies there.
/// On an error everything stands where it stood. On success both folders are on the disk.
[[nodiscard]] FileResult exchangeBundles(const std::string& fresh, const std::string& bundle, const std::string& aside);

/// Ends an exchange that was interrupted: where no bundle stands at its place, the one that waits aside is put back.
void repairExchange(const std::string& bundle, const std::string& aside);

}  // namespace dormel::updates
