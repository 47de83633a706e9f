#include "platform/linux/paint/Confinement.h"

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <initializer_list>
#include <memory>

namespace dormel::paint {
namespace {

/// Everything of the first version that changes something, and what later versions added to that.
constexpr std::uint64_t CHANGES = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                                  LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR |
                                  LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
                                  LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                                  LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
constexpr std::uint64_t REFER = std::uint64_t{1} << 13;     // version 2
constexpr std::uint64_t TRUNCATE = std::uint64_t{1} << 14;  // version 3

bool denyChangesByLandlock() {
  const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
  if (version < 1) return false;
  std::uint64_t handled = CHANGES;
  if (version >= 2) handled |= REFER;
  if (version >= 3) handled |= TRUNCATE;
  // No rule follows: what is handled is denied everywhere.
  const auto rules = static_cast<int>(::syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0));
  if (rules < 0) return false;
  const bool isOn = ::syscall(SYS_landlock_restrict_self, rules, 0) == 0;
  ::close(rules);
  return isOn;
}

bool filterCalls() {
  const std::unique_ptr<void, decltype(&seccomp_release)> filter(seccomp_init(SCMP_ACT_ALLOW), &seccomp_release);
  if (!filter) return false;
  const scmp_filter_ctx context = filter.get();
  const std::uint32_t refuse = SCMP_ACT_ERRNO(EPERM);
  // A call that this machine does not have needs no rule.
  const auto deny = [&](std::initializer_list<int> calls) {
    for (const int call : calls) seccomp_rule_add(context, refuse, call, 0);
  };
  deny({SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(ptrace), SCMP_SYS(kill),
        SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev), SCMP_SYS(pidfd_open), SCMP_SYS(pidfd_send_signal)});
  deny({SCMP_SYS(socket), SCMP_SYS(connect), SCMP_SYS(bind), SCMP_SYS(listen), SCMP_SYS(accept), SCMP_SYS(accept4)});
  deny({SCMP_SYS(creat),     SCMP_SYS(unlink),     SCMP_SYS(unlinkat),  SCMP_SYS(rename),    SCMP_SYS(renameat),
        SCMP_SYS(renameat2), SCMP_SYS(mkdir),      SCMP_SYS(mkdirat),   SCMP_SYS(rmdir),     SCMP_SYS(link),
        SCMP_SYS(linkat),    SCMP_SYS(symlink),    SCMP_SYS(symlinkat), SCMP_SYS(mknod),     SCMP_SYS(mknodat),
        SCMP_SYS(truncate),  SCMP_SYS(chmod),      SCMP_SYS(fchmodat),  SCMP_SYS(chown),     SCMP_SYS(lchown),
        SCMP_SYS(fchownat),  SCMP_SYS(utime),      SCMP_SYS(utimes),    SCMP_SYS(utimensat), SCMP_SYS(setxattr),
        SCMP_SYS(lsetxattr), SCMP_SYS(removexattr)});
  deny({SCMP_SYS(bpf), SCMP_SYS(perf_event_open), SCMP_SYS(userfaultfd), SCMP_SYS(keyctl), SCMP_SYS(add_key),
        SCMP_SYS(request_key), SCMP_SYS(io_uring_setup), SCMP_SYS(mount), SCMP_SYS(unshare), SCMP_SYS(setns)});
  // Their arguments lie where a filter cannot look; callers go on with the older calls.
  for (const int call : {SCMP_SYS(openat2), SCMP_SYS(clone3)}) {
    seccomp_rule_add(context, SCMP_ACT_ERRNO(ENOSYS), call, 0);
  }
  const auto denyWhere = [&](int call, const scmp_arg_cmp& argument) {
    seccomp_rule_add_array(context, refuse, call, 1, &argument);
  };
  // Threads may be made, processes may not.
  denyWhere(SCMP_SYS(clone), {0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0});
  for (const std::uint64_t flag : {std::uint64_t{O_WRONLY}, std::uint64_t{O_RDWR}, std::uint64_t{O_CREAT},
                                   std::uint64_t{O_TRUNC}, std::uint64_t{O_APPEND}}) {
    denyWhere(SCMP_SYS(open), {1, SCMP_CMP_MASKED_EQ, flag, flag});
    denyWhere(SCMP_SYS(openat), {2, SCMP_CMP_MASKED_EQ, flag, flag});
  }
  return seccomp_load(context) == 0;
}

}  // namespace

bool confineThisProcess() {
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return false;
  const bool hasLandlock = denyChangesByLandlock();
  return filterCalls() || hasLandlock;
}

}  // namespace dormel::paint
