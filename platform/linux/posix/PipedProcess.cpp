#include "platform/linux/posix/PipedProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>

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
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, input.get(), STDOUT_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t usual;  // what we do with signals is ours
  sigemptyset(&usual);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) sigaddset(&usual, signal);
  posix_spawnattr_setsigdefault(&attributes, &usual);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  std::vector<char*> array{const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) array.push_back(const_cast<char*>(argument.c_str()));
  array.push_back(nullptr);
  pid_t child = -1;
  const int failure = ::posix_spawn(&child, path.c_str(), &actions, &attributes, array.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) return nullptr;
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
