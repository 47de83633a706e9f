#include "platform/linux/supervisor/JobLock.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/posix/PosixFiles.h"

namespace dormel::jobs::supervisor {
namespace {

// A lock of the process, not of the file handle, which the job's process inherits for a moment. It tells who has it.
struct flock wholeFile() {
  struct flock whole {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  return whole;
}

}  // namespace

JobLock::JobLock(const std::string& label)
    : folder_(freedesktop::stateHome() + "/" + label), path_(folder_ + "/lock") {}

bool JobLock::claim() {
  if (freedesktop::createFolders(folder_, 0700)) return false;
  file_ = posix::FileDescriptor(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  struct flock whole = wholeFile();
  // One that was deleted by whoever held it before protects nothing.
  if (file_.valid() && ::fcntl(file_.get(), F_SETLK, &whole) == 0 && isFound()) return true;
  file_.reset();
  return false;
}

bool JobLock::isFound() const { return posix::isAt(file_.get(), path_); }

std::optional<pid_t> JobLock::holder() const {
  const posix::FileDescriptor file(::open(path_.c_str(), O_RDWR | O_CLOEXEC));
  struct flock whole = wholeFile();
  if (!file.valid() || ::fcntl(file.get(), F_GETLK, &whole) != 0 || whole.l_type == F_UNLCK) return {};
  return whole.l_pid;
}

void JobLock::write(const JobReport& report) const {
  std::string text;
  for (const auto& [name, value] : report) text.append(name).append("\t").append(value).append("\n");
  if (::pwrite(file_.get(), text.data(), text.size(), 0) == static_cast<ssize_t>(text.size())) {
    static_cast<void>(!::ftruncate(file_.get(), static_cast<off_t>(text.size())));
  }
}

JobReport JobLock::read() const {
  JobReport report;
  std::string text(4096, '\0');
  if (file_.valid()) {  // closing it once more would give the lock up
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, ::pread(file_.get(), text.data(), text.size(), 0))));
  } else {
    text = freedesktop::readTextFile(path_).value_or("");
  }
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const auto tab = line.find('\t');
    if (tab != std::string::npos) report.emplace_back(line.substr(0, tab), line.substr(tab + 1));
  }
  return report;
}

bool JobLock::exists() const { return ::access(path_.c_str(), F_OK) == 0; }

void JobLock::clear() {
  if (!file_.valid()) return;
  ::unlink(path_.c_str());
  ::rmdir(folder_.c_str());
  file_.reset();
}

}  // namespace dormel::jobs::supervisor
