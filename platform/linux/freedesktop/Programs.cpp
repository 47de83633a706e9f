#include "platform/linux/freedesktop/Programs.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace dormel::freedesktop {

std::optional<std::string> findProgram(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "/usr/local/bin:/usr/bin:/bin" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    std::string candidate = folder;
    candidate.append("/").append(name);
    std::error_code ignored;
    if (folder.starts_with('/') && ::access(candidate.c_str(), X_OK) == 0 &&
        std::filesystem::is_regular_file(candidate, ignored)) {
      return candidate;
    }
  }
  return {};
}

}  // namespace dormel::freedesktop
