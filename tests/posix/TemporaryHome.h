// A home folder of the test's own, set as HOME while it lives and deleted afterwards; and what else a test changes
// about its process for a while: environment variables, and how large a file may get.
#pragma once

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/Process.h"

namespace dormel {

/// An environment variable for the life of this object.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    ::setenv(name, value.c_str(), 1);
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() { before_ ? ::setenv(name_, before_->c_str(), 1) : ::unsetenv(name_); }

 private:
  const char* name_;
  std::optional<std::string> before_;
};

class TemporaryHome {
 public:
  TemporaryHome() = default;
  TemporaryHome(const TemporaryHome&) = delete;
  TemporaryHome& operator=(const TemporaryHome&) = delete;
  ~TemporaryHome() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  static std::string make() {
    std::string pattern = (std::filesystem::temp_directory_path() / "dormel-home-XXXXXX").string();
    return ::mkdtemp(pattern.data());
  }

  std::string path_ = make();
  Variable home_{"HOME", path_};
};

/// Fails every write beyond that many bytes of a file half-way, as a full disk does, for the life of this object.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit tight{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &tight);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    ::signal(SIGXFSZ, signal_);
  }

 private:
  rlimit before_{};
  void (*signal_)(int) = ::signal(SIGXFSZ, SIG_IGN);
};

/// Keeps what is complained about.
struct Recorder final : StandardOutput {
  void print(std::string_view /*line*/) override {}
  void printError(std::string_view line) override { errors.emplace_back(line); }
  [[nodiscard]] std::optional<Terminal> terminal() const override { return {}; }
  std::vector<std::string> errors;
};

inline std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The content of a file that another process writes and then renames into place; empty if it does not come.
inline std::string awaited(const std::string& path) {
  for (int i = 0; i < 1000 && !std::filesystem::exists(path); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return contents(path);
}

inline void put(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace dormel
