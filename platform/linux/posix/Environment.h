// What the system says of a process: its environment's variables, its program. Thread: the environment is read by the
// main thread alone, or before there are others.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace dormel::posix {

/// Empty where it is not set.
[[nodiscard]] inline std::string environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// The file of a process's program; empty where it cannot be known. The kernel marks a program whose file was replaced
/// while it runs; its place is still the one that is meant.
[[nodiscard]] inline std::string executableOf(const std::string& process = "self") {
  constexpr const char* REPLACED = " (deleted)";
  std::error_code error;
  std::string path = std::filesystem::read_symlink("/proc/" + process + "/exe", error).string();
  if (path.ends_with(REPLACED)) path.resize(path.rfind(REPLACED));
  return path;
}

}  // namespace dormel::posix
