#include "platform/linux/supervisor/SupervisorPlace.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"
#include "platform/linux/jobs/ProcessTable.h"

namespace dormel::jobs::supervisor {
namespace {

std::string inFolder(const std::string& folder, const char* name) { return folder + "/" + name; }

/// Calls `use` with the socket's address. A socket's address holds about a hundred characters, which a home
/// folder may well exceed; through an open folder it is always short.
template <typename Use>
int withAddress(const std::string& folder, Use use) {
  const posix::FileDescriptor handle(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!handle.valid()) return -1;
  const std::string path = "/proc/self/fd/" + std::to_string(handle.get()) + "/socket";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::copy(path.begin(), path.end(), &address.sun_path[0]);
  return use(reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(sizeof address));
}

/// Process ids start anew when the machine does.
std::string bootId() { return freedesktop::readTextFile("/proc/sys/kernel/random/boot_id").value_or("unknown\n"); }

}  // namespace

SupervisorPlace::SupervisorPlace(const std::string& label) : folder_(freedesktop::stateHome() + "/" + label) {}

void SupervisorPlace::close() {
  listener_.reset();
  lock_.reset();
}

bool SupervisorPlace::lock() {
  const std::string path = inFolder(folder_, "lock");
  lock_ = posix::FileDescriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  struct flock whole {};
  whole.l_type = F_WRLCK;
  whole.l_whence = SEEK_SET;
  // A lock of the process, not of the file handle, which the job's process inherits for a moment.
  if (!lock_.valid() || ::fcntl(lock_.get(), F_SETLK, &whole) != 0) return false;
  // The file may have been deleted by a supervisor that was just leaving; its lock would protect nothing.
  struct stat held {};
  struct stat present {};
  return ::fstat(lock_.get(), &held) == 0 && ::stat(path.c_str(), &present) == 0 && held.st_ino == present.st_ino &&
         held.st_dev == present.st_dev;
}

bool SupervisorPlace::claim() {
  close();
  if (freedesktop::createFolders(folder_, 0700)) return false;
  ::chmod(folder_.c_str(), 0700);
  if (!lock()) {
    close();
    return false;
  }
  ::unlink(inFolder(folder_, "socket").c_str());
  listener_ = posix::FileDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const int bound = withAddress(
      folder_, [&](const sockaddr* address, socklen_t length) { return ::bind(listener_.get(), address, length); });
  if (bound != 0 || ::listen(listener_.get(), 16) != 0) {
    close();
    return false;
  }
  return true;
}

void SupervisorPlace::clear() {
  if (!lock_.valid()) return;  // somebody else's by now
  for (const char* name : {"socket", "job", "lock"}) ::unlink(inFolder(folder_, name).c_str());
  ::rmdir(folder_.c_str());
  close();
}

posix::FileDescriptor SupervisorPlace::connect() const {
  posix::FileDescriptor connection(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
  const int connected = withAddress(
      folder_, [&](const sockaddr* address, socklen_t length) { return ::connect(connection.get(), address, length); });
  if (connected != 0) connection.reset();
  return connection;
}

std::optional<ProcessRecord> SupervisorPlace::livingProcess() const {
  const auto text = freedesktop::readTextFile(inFolder(folder_, "job"));
  if (!text) return {};
  std::istringstream fields(*text);
  ProcessRecord process;
  std::string boot;
  fields >> process.process >> process.startTicks >> boot;
  if (!fields || boot + "\n" != bootId() || processStartTicks(process.process) != process.startTicks) return {};
  return process;
}

void SupervisorPlace::record(std::optional<ProcessRecord> process) const {
  const std::string path = inFolder(folder_, "job");
  if (!process) {
    ::unlink(path.c_str());
    return;
  }
  freedesktop::replaceTextFile(
      path, std::to_string(process->process) + " " + std::to_string(process->startTicks) + " " + bootId());
}

}  // namespace dormel::jobs::supervisor
