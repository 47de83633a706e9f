#include "platform/linux/posix/PosixBundle.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/linux/posix/Environment.h"

namespace dormel::posix {

PosixBundle::PosixBundle() {
  namespace fs = std::filesystem;
  executable_ = executableOf();
  const fs::path executable = executable_;
  const fs::path contents = executable.parent_path().parent_path();
  isBundle_ = contents.filename() == "Contents" && contents.parent_path().extension() == ".app";
  path_ = (isBundle_ ? contents.parent_path() : executable.parent_path()).string();
  if (!isBundle_) return;
  std::ifstream file(contents / "Info.plist", std::ios::binary);
  const std::string xml{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (const auto root = readXmlPropertyList(xml)) {
    if (const auto* entries = root->as<PropertyListDictionary>()) info_ = *entries;
  }
}

std::optional<std::string> PosixBundle::executablePath() const {
  if (!isBundle_) return {};
  // Another program beside it may be the one that runs: this is the one that others start.
  const auto name = info("CFBundleExecutable");
  return name ? executable_.substr(0, executable_.rfind('/') + 1) + *name : executable_;
}

std::optional<std::string> PosixBundle::info(const std::string& key) const {
  const auto entry = info_.find(key);
  if (entry == info_.end()) return {};
  const auto* text = entry->second.as<std::string>();
  if (text != nullptr) return *text;
  const auto* number = entry->second.as<std::int64_t>();
  return number == nullptr ? std::nullopt : std::optional(std::to_string(*number));
}

std::optional<std::string> PosixBundle::packageRemoval() const {
  // A copy of a packaged bundle says so, too, but no package knows of it.
  return info("DormelPackagePlace") == path_ ? info("DormelPackageRemoval") : std::nullopt;
}

std::string PosixBundle::helper(const std::string& name) const {
  return path_ + (isBundle_ ? "/Contents/Helpers/" : "/") + name;
}

std::map<std::string, std::string> PosixBundle::tools() const {
  return {{"/bin/launchctl", helper("launchctl")},
          {"/usr/bin/open", helper("open")},
          // Takes the mark of a download off a copy. Here it is an extended attribute, if anything, and copies do not
          // inherit those: there is nothing to take off.
          {"/usr/bin/xattr", "/bin/true"}};
}

}  // namespace dormel::posix
