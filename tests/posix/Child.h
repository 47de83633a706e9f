// Parts of a test that need a process of their own: another user, another view of the disks, an end.
#pragma once

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

namespace dormel {

/// Runs `body` in a child process and answers its exit status: what the body returns, or exits with, or 128 and the
/// signal that ended it.
template <typename Body>
int statusOf(Body body) {
  const pid_t child = ::fork();
  if (child == 0) {
    try {
      ::_exit(static_cast<int>(body()));
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
      ::_exit(98);  // and not back into the test, which has a process of its own
    }
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

constexpr uid_t NOBODY = 65534;

/// The same as a user whom permissions bind; `folder` is given to that user first, who otherwise is the test's own.
template <typename Body>
int statusAsOrdinaryUser(const std::string& folder, Body body) {
  if (::geteuid() != 0) return statusOf(body);
  if (::chown(folder.c_str(), NOBODY, NOBODY) != 0) return -1;
  return statusOf([&] {
    return ::setresgid(NOBODY, NOBODY, NOBODY) == 0 && ::setresuid(NOBODY, NOBODY, NOBODY) == 0 ? body() : -1;
  });
}

/// Gives this process a view of the mounts that it can change without anybody noticing; false where it may not.
inline bool ownMounts() {
  const std::string user = std::to_string(::geteuid()) + " " + std::to_string(::geteuid()) + " 1";
  const std::string group = std::to_string(::getegid()) + " " + std::to_string(::getegid()) + " 1";
  const bool isRoot = ::geteuid() == 0;
  if (::unshare(isRoot ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) return false;
  if (!isRoot) {  // who else would own the files that are made?
    std::ofstream("/proc/self/setgroups") << "deny";
    std::ofstream("/proc/self/uid_map") << user;
    std::ofstream("/proc/self/gid_map") << group;
  }
  return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace dormel
