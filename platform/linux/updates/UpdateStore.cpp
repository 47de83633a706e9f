#include "platform/linux/updates/UpdateStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/linux/posix/PosixFiles.h"

namespace dormel::updates {
namespace {

namespace fs = std::filesystem;

constexpr const char* ARCHIVE = "archive";
constexpr const char* COMING = "archive.part";
constexpr const char* ENTRY = "update.json";
constexpr std::uintmax_t LARGEST_ENTRY = 16'384;

/// A regular file of a size that suits; nothing otherwise.
template <typename Suits>
std::optional<std::string> readFile(const std::string& path, Suits suits) {
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(path, error))) return {};
  const std::uintmax_t size = fs::file_size(path, error);
  if (error || !suits(size)) return {};
  std::string bytes(size, '\0');
  std::ifstream file(path, std::ios::binary);
  if (!file.read(bytes.data(), static_cast<std::streamsize>(size))) return {};
  return bytes;
}

}  // namespace

UpdateStore::UpdateStore(const std::string& bundle) {
  const std::size_t name = bundle.rfind('/') + 1;
  folder_ = bundle.substr(0, name) + "." + bundle.substr(name) + ".update";
}

bool UpdateStore::exists() const {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(folder_, ignored));
}

std::optional<FeedEntry> UpdateStore::staged() const {
  const auto text = readFile(in(ENTRY), [](std::uintmax_t size) { return size <= LARGEST_ENTRY; });
  return text ? parseEntry(*text) : std::nullopt;
}

std::optional<std::string> UpdateStore::archive(const FeedEntry& entry) const {
  return readFile(in(ARCHIVE), [&](std::uintmax_t size) { return size == entry.length; });
}

bool UpdateStore::isOurs() const {
  struct stat info {};
  return ::lstat(folder_.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == ::geteuid();
}

FileResult UpdateStore::openUp() const {
  if (::mkdir(folder_.c_str(), 0700) == 0) return {};
  if (errno != EEXIST) return posix::lastError();
  // In a folder that is everybody's, somebody else may have been here first: whoever owns this one could exchange what
  // was verified.
  if (!isOurs()) return FileError{std::generic_category().message(EPERM)};
  if (::chmod(folder_.c_str(), 0700) != 0) return posix::lastError();
  return {};
}

FileResult UpdateStore::keep(const FeedEntry& entry, std::string_view archive) const {
  if (auto failure = openUp()) return failure;
  posix::PosixFiles files;
  // A disk that is full notices here, where what waited before still stands.
  if (auto failure = files.writeAtomically(in(COMING), archive)) return failure;
  // In this order a description never stands beside an archive that it does not belong to.
  std::error_code ignored;
  fs::remove(in(ENTRY), ignored);
  FileResult failure = files.rename(in(COMING), in(ARCHIVE));
  if (!failure) failure = files.writeAtomically(in(ENTRY), write(entry));
  if (failure) clear();
  return failure;
}

std::optional<std::string> UpdateStore::makeFolder(const std::string& name) const {
  if (openUp()) return {};
  const std::string path = in(name.c_str());
  posix::removeTree(path);
  if (::mkdir(path.c_str(), 0700) != 0) return {};
  return path;
}

void UpdateStore::removeFolder(const std::string& name) const {
  if (isOurs()) posix::removeTree(in(name.c_str()));
}

void UpdateStore::clear() const {
  std::error_code ignored;
  if (isOurs()) fs::remove(in(ENTRY), ignored);
  posix::removeTree(folder_);  // of a link, the link
}

FolderLock::FolderLock(const std::string& folder)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  while (folder_.valid() && ::flock(folder_.get(), LOCK_EX) != 0 && errno == EINTR) {
  }
}

}  // namespace dormel::updates
