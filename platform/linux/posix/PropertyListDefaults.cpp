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
  enum class Wait { no, yes };

  explicit Locked(const std::string& path, Wait wait = Wait::yes)
      : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    const int how = LOCK_EX | (wait == Wait::yes ? 0 : LOCK_NB);
    while (file_.valid() && ::flock(file_.get(), how) != 0) {
      if (errno == EINTR) continue;
      isAnothers_ = errno == EWOULDBLOCK;
      break;
    }
  }
  [[nodiscard]] bool isAnothers() const { return isAnothers_; }

 private:
  FileDescriptor file_;
  bool isAnothers_ = false;
};

std::optional<PropertyListDictionary> dictionaryIn(const std::optional<std::string>& bytes) {
  auto root = bytes ? readXmlPropertyList(*bytes) : std::nullopt;
  auto* dictionary = root ? std::get_if<PropertyListDictionary>(&root->value) : nullptr;
  return dictionary == nullptr ? std::nullopt : std::optional(std::move(*dictionary));
}

}  // namespace

bool PropertyListDefaults::Identity::operator==(const Identity& other) const {
  return std::tie(error, device, inode, size, modified.tv_sec, modified.tv_nsec) ==
         std::tie(other.error, other.device, other.inode, other.size, other.modified.tv_sec, other.modified.tv_nsec);
}

PropertyListDefaults::PropertyListDefaults(Files& files, StandardOutput& output, const std::string& domain)
    : files_(files),
      output_(output),
      folder_(files.homeDirectory() + "/Library/Preferences"),
      path_(folder_ + "/" + domain + ".plist"),
      copyPath_(path_ + ".good"),
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
    files_.remove(copyPath_);  // first: without the file it would count as the settings
    files_.remove(path_);
    stored_.clear();
    isWhole_ = false;
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

PropertyListDefaults::Identity PropertyListDefaults::identityOf(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return {.error = errno};
  return {0, info.st_dev, info.st_ino, info.st_size, info.st_mtim};
}

void PropertyListDefaults::refresh() const {
  if (loaded_ && identity() == known_) return;
  load(false);
}

bool PropertyListDefaults::load(bool isLocked) const {
  loaded_ = true;
  known_ = identity();
  const auto bytes = known_.error == 0 ? files_.read(path_) : std::nullopt;
  if (auto entries = dictionaryIn(bytes)) {
    stored_ = std::move(*entries);
    isWhole_ = true;
    lastComplaint_.clear();
    return true;
  }
  const bool isUnreadable = !known_.isGone() && !bytes;
  const auto copy = files_.read(copyPath_);
  const bool isCopyGone = !copy && identityOf(copyPath_).isGone();
  if (identity() != known_) return load(isLocked);  // another process replaced it meanwhile
  if (known_.isGone() && isCopyGone) {              // nothing was ever stored, or it was removed
    stored_.clear();
    isWhole_ = false;
    return true;
  }
  std::optional<std::string> trouble;
  if (isUnreadable) {
    trouble = "cannot be read";
  } else if (!known_.isGone()) {
    trouble = keepAside(isLocked);
  } else if (!isWhole_) {
    trouble = "is gone";
  }
  if (!isWhole_) {
    auto entries = dictionaryIn(copy);
    isWhole_ = entries.has_value();
    stored_ = std::move(entries).value_or(PropertyListDictionary{});
  }
  if (trouble) report(*trouble + (isWhole_ ? "; using what it said before" : "; using the default settings"));
  return !isUnreadable;
}

std::optional<std::string> PropertyListDefaults::keepAside(bool isLocked) const {
  std::optional<Locked> lock;
  if (!isLocked) lock.emplace(lockPath_, Locked::Wait::no);
  if ((lock && lock->isAnothers()) || identity() != known_) {
    loaded_ = false;  // the next look finds what came of it
    return {};
  }
  std::string aside = path_ + ".damaged";
  for (int n = 2; files_.exists(aside); ++n) aside = path_ + ".damaged-" + std::to_string(n);
  const bool kept = !files_.rename(path_, aside);
  known_ = identity();
  return kept ? "is damaged and was kept as " + aside : "is damaged";
}

void PropertyListDefaults::report(const std::string& what) const {
  std::string line = "Dormel: the settings file " + path_ + " " + what;
  if (line == lastComplaint_) return;
  output_.printError(line);
  lastComplaint_ = std::move(line);
}

bool PropertyListDefaults::flush() {
  const auto cannotWrite = [this](const std::string& reason) {
    report("cannot be written (" + reason + "); the change holds until Dormel ends");
    return false;
  };
  if (const auto error = files_.createDirectories(folder_, 0700)) return cannotWrite(error->message);
  const Locked lock(lockPath_);
  if (!load(true)) return cannotWrite("it cannot be read");
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
  files_.writeAtomically(copyPath_, *xml);  // if not, the copy before it stands
  stored_ = std::move(merged);
  isWhole_ = true;
  known_ = identity();
  unwritten_.clear();
  lastComplaint_.clear();
  return true;
}

}  // namespace dormel::posix
