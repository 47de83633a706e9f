// A home folder of the test's own, set as HOME while it lives and deleted afterwards.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace dormel {

class TemporaryHome {
 public:
  TemporaryHome() {
    std::string pattern = (std::filesystem::temp_directory_path() / "dormel-home-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
    if (const char* home = std::getenv("HOME")) before_ = home;
    ::setenv("HOME", path_.c_str(), 1);
  }
  TemporaryHome(const TemporaryHome&) = delete;
  TemporaryHome& operator=(const TemporaryHome&) = delete;
  ~TemporaryHome() {
    ::setenv("HOME", before_.c_str(), 1);
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
  std::string before_;
};

inline std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void put(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace dormel
