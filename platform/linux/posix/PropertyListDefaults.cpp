#include "platform/linux/posix/PropertyListDefaults.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/Files.h"
#include "platform/Process.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::posix {
namespace {

/// Holds the store's file lock. Without one (the folder cannot be written) there is nothing to guard either.
class Locked {
 public:
  explicit Locked(const std::string& path) : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    while (file_.valid() && ::flock(file_.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
  }

 private:
  FileDescriptor file_;
};

}  // namespace

bool PropertyListDefaults::Identity::operator==(const Identity& other) const {
  return std::tie(device, inode, size, modified.tv_sec, modified.tv_nsec) ==
         std::tie(other.device, other.inode, other.size, other.modified.tv_sec, other.modified.tv_nsec);
}

PropertyListDefaults::PropertyListDefaults(Files& files, StandardOutput& output, const std::string& domain)
    : files_(files),
      output_(output),
      folder_(files.homeDirectory() + "/Library/Preferences"),
      path_(folder_ + "/" + domain + ".plist"),
      lockPath_(folder_ + "/." + domain + ".lock") {}

std::optional<PropertyListValue> PropertyListDefaults::object(std::string_view key) const {
  const std::lock_guard guard(mutex_);
  if (const auto change = unwritten_.find(key); change != unwritten_.end()) return change->second;
  refresh();
  const auto entry = stored_.find(key);
  if (entry == stored_.end()) return {};
  return entry->second;
}

void PropertyListDefaults::set(std::string_view key, PropertyListValue value) {
  const std::lock_guard guard(mutex_);
  unwritten_.insert_or_assign(std::string(key), std::optional(std::move(value)));
  flush();
}

void PropertyListDefaults::remove(std::string_view key) {
  const std::lock_guard guard(mutex_);
  unwritten_.insert_or_assign(std::string(key), std::nullopt);
  flush();
}

void PropertyListDefaults::removeDomain() {
  const std::lock_guard guard(mutex_);
  unwritten_.clear();
  {
    const Locked lock(lockPath_);
    files_.remove(path_);
    stored_.clear();
    known_ = identity();
  }
  files_.remove(lockPath_);
  // Damaged files that were kept aside, and what a write that was cut off left behind.
  const std::filesystem::path file = path_;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
    if (entry.path().filename().string().starts_with(file.filename().string() + ".")) files_.remove(entry.path());
  }
}

bool PropertyListDefaults::synchronize() {
  const std::lock_guard guard(mutex_);
  return unwritten_.empty() || flush();
}

std::optional<PropertyListDefaults::Identity> PropertyListDefaults::identity() const {
  struct stat info {};
  if (::stat(path_.c_str(), &info) != 0) return {};
  return Identity{info.st_dev, info.st_ino, info.st_size, info.st_mtim};
}

void PropertyListDefaults::refresh() const {
  const auto present = identity();
  if (loaded_ && present == known_) return;
  load();
}

bool PropertyListDefaults::load() const {
  loaded_ = true;
  stored_.clear();
  known_ = identity();
  if (!known_) return true;  // nothing was ever stored
  const auto bytes = files_.read(path_);
  if (!bytes) {
    complain("cannot be read; using the default settings");
    return false;
  }
  auto root = readXmlPropertyList(*bytes);
  auto* dictionary = root ? std::get_if<PropertyListDictionary>(&root->value) : nullptr;
  if (dictionary == nullptr) {
    keepAside();
    return true;
  }
  stored_ = std::move(*dictionary);
  lastComplaint_.clear();
  return true;
}

void PropertyListDefaults::keepAside() const {
  std::string aside = path_ + ".damaged";
  for (int n = 2; files_.exists(aside); ++n) aside = path_ + ".damaged-" + std::to_string(n);
  const bool kept = !files_.rename(path_, aside);
  complain(kept ? "is damaged and was kept as " + aside + "; using the default settings"
                : "is damaged; using the default settings");
  known_ = identity();
}

void PropertyListDefaults::complain(const std::string& what) const {
  std::string line = "Dormel: the settings file " + path_ + " " + what;
  if (line == lastComplaint_) return;
  output_.printError(line);
  lastComplaint_ = std::move(line);
}

bool PropertyListDefaults::flush() {
  const auto cannotWrite = [this](const std::string& reason) {
    complain("cannot be written (" + reason + "); the change holds until Dormel ends");
    return false;
  };
  if (const auto error = files_.createDirectories(folder_, 0700)) return cannotWrite(error->message);
  const Locked lock(lockPath_);
  if (!load()) return cannotWrite("it cannot be read");
  PropertyListDictionary merged = stored_;
  for (const auto& [key, value] : unwritten_) {
    if (value) {
      merged.insert_or_assign(key, *value);
    } else {
      merged.erase(key);
    }
  }
  const auto xml = writeXmlPropertyList({merged});
  if (!xml) return cannotWrite("a text in it is not UTF-8");
  if (const auto error = files_.writeAtomically(path_, *xml)) return cannotWrite(error->message);
  stored_ = std::move(merged);
  known_ = identity();
  unwritten_.clear();
  lastComplaint_.clear();
  return true;
}

}  // namespace dormel::posix
