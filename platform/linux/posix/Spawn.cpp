#include "platform/linux/posix/Spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <utility>

namespace dormel::posix {

std::vector<char*> argumentArray(const std::string& path, const std::vector<std::string>& arguments) {
  std::vector<char*> array{const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) array.push_back(const_cast<char*>(argument.c_str()));
  array.push_back(nullptr);
  return array;
}

pid_t spawn(const std::string& path, const std::vector<std::string>& arguments, const OutputStreams& streams) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const auto& [stream, ours] :
       {std::pair{STDIN_FILENO, -1}, {STDOUT_FILENO, streams.output}, {STDERR_FILENO, streams.errors}}) {
    if (ours < 0) {
      posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    } else if (ours != stream) {
      posix_spawn_file_actions_adddup2(&actions, ours, stream);
    }
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t usual;
  sigemptyset(&usual);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGCHLD}) sigaddset(&usual, signal);
  posix_spawnattr_setsigdefault(&attributes, &usual);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  pid_t child = -1;
  const int failure =
      ::posix_spawn(&child, path.c_str(), &actions, &attributes, argumentArray(path, arguments).data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return failure == 0 ? child : -1;
}

}  // namespace dormel::posix
