#include "platform/linux/posix/PosixFiles.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::posix {
namespace {

/// Follows links: where one of our files is to lie is the user's to say.
FileDescriptor openFile(const std::string& path, int flags, unsigned mode = 0) {
  for (;;) {
    const int fd = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    if (fd >= 0 || errno != EINTR) return FileDescriptor(fd);
  }
}

}  // namespace

FileError lastError() { return {std::generic_category().message(errno)}; }

bool isAt(int file, const std::string& path) {
  struct stat held {};
  struct stat present {};
  return ::fstat(file, &held) == 0 && ::stat(path.c_str(), &present) == 0 && held.st_dev == present.st_dev &&
         held.st_ino == present.st_ino;
}

bool writeAll(int file, std::string_view& bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

PosixFiles::PosixFiles(OnFolderCreated onFolderCreated) : onFolderCreated_(std::move(onFolderCreated)) {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/') {
    home_ = home;
  } else if (const passwd* account = getpwuid(getuid()); account != nullptr && account->pw_dir != nullptr) {
    home_ = account->pw_dir;
  }
  while (home_.size() > 1 && home_.back() == '/') home_.pop_back();
}

bool PosixFiles::exists(const std::string& path) const {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0;
}

FileResult PosixFiles::createDirectories(const std::string& path, unsigned mode) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    if (::mkdir(part.c_str(), mode) == 0) {
      if (onFolderCreated_) onFolderCreated_(part);
    } else if (errno != EEXIST) {
      const FileError error = lastError();
      if (!exists(part)) return error;  // a read-only folder above may still hold the one we want
    }
    if (end == std::string::npos) break;
  }
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return lastError();
  if (!S_ISDIR(info.st_mode)) return FileError{std::generic_category().message(ENOTDIR)};
  return {};
}

FileResult PosixFiles::setMode(const std::string& path, unsigned mode) {
  if (::chmod(path.c_str(), mode) != 0) return lastError();
  return {};
}

std::optional<unsigned> PosixFiles::mode(const std::string& path) const {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return {};
  return info.st_mode & 07777U;
}

std::optional<std::string> PosixFiles::read(const std::string& path) const {
  const FileDescriptor file = openFile(path, O_RDONLY | O_NONBLOCK);  // a fifo in the file's place must not hang us
  struct stat info {};
  if (!file.valid() || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return {};
  std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
  std::size_t have = 0;
  for (;;) {
    if (have == bytes.size()) bytes.resize(bytes.size() + 4096);  // it may have grown meanwhile
    const ssize_t got = ::read(file.get(), bytes.data() + have, bytes.size() - have);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return {};
    if (got == 0) break;
    have += static_cast<std::size_t>(got);
  }
  bytes.resize(have);
  return bytes;
}

FileResult PosixFiles::write(const std::string& path, std::string_view bytes, std::optional<unsigned> mode) {
  const bool existed = exists(path);
  const FileDescriptor file =
      openFile(path, O_WRONLY | O_CREAT | O_TRUNC | (mode && !existed ? O_EXCL : 0), mode.value_or(0666));
  if (!file.valid()) return lastError();
  const bool modeSet = !mode || ::fchmod(file.get(), *mode) == 0;
  // A power cut after the rename that follows must not leave an empty file where a full one was.
  if (modeSet && writeAll(file.get(), bytes) && (!mode || ::fsync(file.get()) == 0)) return {};
  const FileError error = lastError();
  if (!existed) ::unlink(path.c_str());
  return error;
}

FileResult PosixFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  std::string temporary = path + ".XXXXXX";
  const FileDescriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.valid()) return lastError();
  const unsigned permissions = mode(path).value_or(0644);
  if (::fchmod(file.get(), permissions) == 0 && writeAll(file.get(), bytes) && ::fsync(file.get()) == 0 &&
      ::rename(temporary.c_str(), path.c_str()) == 0) {
    return {};
  }
  const FileError error = lastError();
  ::unlink(temporary.c_str());
  return error;
}

bool PosixFiles::append(const std::string& path, std::string_view bytes) {
  const FileDescriptor file = openFile(path, O_WRONLY | O_APPEND | O_NONBLOCK);
  if (!file.valid()) return errno != ENOENT;
  std::string_view rest = bytes;
  if (writeAll(file.get(), rest) || rest.size() == bytes.size()) return true;
  // A disk that got full took a part of it. What is appended next must not go on from there.
  const off_t end = ::lseek(file.get(), 0, SEEK_CUR);
  struct stat info {};
  if (::fstat(file.get(), &info) == 0 && info.st_size == end) {
    static_cast<void>(!::ftruncate(file.get(), end - static_cast<off_t>(bytes.size() - rest.size())));
  }
  return true;
}

FileResult PosixFiles::rename(const std::string& from, const std::string& to) {
  if (::rename(from.c_str(), to.c_str()) != 0) return lastError();
  return {};
}

FileResult PosixFiles::remove(const std::string& path) { return removeTree(path); }

FileResult removeTree(const std::string& path) {
  namespace fs = std::filesystem;
  FileResult first;
  std::error_code error;
  const auto note = [&](const FileResult& failure) {
    if (failure && !first) first = failure;
  };
  if (fs::is_directory(fs::symlink_status(path, error))) {
    // Listed before anything goes: what is removed while it runs may turn up again under another name.
    std::vector<std::string> inside;
    for (fs::directory_iterator entry(path, error); !error && entry != fs::directory_iterator(); entry.increment(error))
      inside.push_back(entry->path());
    for (const std::string& each : inside) note(removeTree(each));
  }
  if (::remove(path.c_str()) != 0) note(lastError());
  return first;
}

}  // namespace dormel::posix
