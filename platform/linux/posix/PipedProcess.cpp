#include "platform/linux/posix/PipedProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/linux/posix/Spawn.h"

namespace dormel::posix {
namespace {

constexpr std::size_t LONGEST_LINE = 256;

}  // namespace

std::unique_ptr<PipedProcess> PipedProcess::start(const std::string& path, const std::vector<std::string>& arguments) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return nullptr;
  FileDescriptor output(ends[0]);
  const FileDescriptor input(ends[1]);
  ::fcntl(output.get(), F_SETFL, O_NONBLOCK);
  const pid_t child = spawn(path, arguments, {input.get(), STDERR_FILENO});
  if (child < 0) return nullptr;
  return std::unique_ptr<PipedProcess>(new PipedProcess(child, std::move(output)));
}

PipedProcess::~PipedProcess() {
  ::kill(child_, SIGKILL);
  while (::waitpid(child_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool PipedProcess::read() {
  std::array<char, 1024> part{};
  for (;;) {
    const ssize_t got = ::read(output_.get(), part.data(), part.size());
    if (got > 0) {
      heard_.append(part.data(), static_cast<std::size_t>(got));
    } else if (got == 0 || errno != EINTR) {
      return got < 0 && errno == EAGAIN;
    }
  }
}

std::optional<std::string> PipedProcess::nextLine() {
  const std::size_t end = std::min(heard_.find('\n'), LONGEST_LINE);
  if (end >= heard_.size()) return {};
  std::string line = heard_.substr(0, end);
  heard_.erase(0, end + (heard_[end] == '\n' ? 1 : 0));
  return line;
}

}  // namespace dormel::posix
