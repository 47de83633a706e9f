#include "platform/linux/paint/PainterLauncher.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/common/paint/Messages.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::paint {
namespace {

using posix::FileDescriptor;

/// Others get their turn in between.
constexpr int MESSAGES_IN_A_TURN = 32;
constexpr std::size_t LARGEST_MEMORY = std::size_t{512} * 1024 * 1024;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_SANITIZED = true;  // a sanitizer reserves terabytes of address space
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif
#else
constexpr bool IS_SANITIZED = false;
#endif

struct Limit {
  __rlimit_resource resource;
  rlim_t most;
};
constexpr Limit LIMITS[] = {
    {RLIMIT_CORE, 0},
    {RLIMIT_FSIZE, LARGEST_MEMORY},  // counts for shared memory, too
    {RLIMIT_NOFILE, 256},
};
constexpr Limit MEMORY_LIMIT{RLIMIT_AS, rlim_t{3} * 1024 * 1024 * 1024};

/// What would lead the painter to somebody who has no business with it.
constexpr std::string_view NOT_FOR_IT[] = {"DISPLAY=",        "WAYLAND_",         "DBUS_",
                                           "XAUTHORITY=",     "SESSION_MANAGER=", "QT_QPA_",
                                           "QT_PLUGIN_PATH=", "QT_STYLE_",        "QML",
                                           "NOTIFY_SOCKET="};

std::vector<std::string> environmentForIt() {
  std::vector<std::string> kept;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text(*entry);
    bool isKept = true;
    for (const std::string_view other : NOT_FOR_IT) isKept = isKept && !text.starts_with(other);
    if (isKept) kept.emplace_back(text);
  }
  kept.emplace_back("QT_ACCESSIBILITY=0");
  return kept;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> array;
  array.reserve(texts.size() + 1);
  for (std::string& text : texts) array.push_back(text.data());
  array.push_back(nullptr);
  return array;
}

void setLimit(const Limit& limit) {
  const rlimit both{limit.most, limit.most};
  ::setrlimit(limit.resource, &both);
}

/// Between fork and exec: nothing here may allocate or take a lock.
[[noreturn]] void becomePainter(const char* path, char* const* arguments, char* const* environment, int socket,
                                pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(127);
  const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  ::dup2(nothing, STDIN_FILENO);
  ::dup2(nothing, STDOUT_FILENO);
  if (socket == PAINTER_DESCRIPTOR) {
    ::fcntl(socket, F_SETFD, 0);
  } else {
    ::dup2(socket, PAINTER_DESCRIPTOR);
  }
  if (::syscall(SYS_close_range, PAINTER_DESCRIPTOR + 1, ~0U, 0) != 0) {
    for (int fd = PAINTER_DESCRIPTOR + 1; fd < 1024; ++fd) ::close(fd);
  }
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE, SIGCHLD, SIGQUIT}) ::signal(signal, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  for (const Limit& limit : LIMITS) setLimit(limit);
  if (!IS_SANITIZED) setLimit(MEMORY_LIMIT);
  ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  static_cast<void>(!::chdir("/"));
  ::execve(path, arguments, environment);
  ::_exit(127);
}

class SealedMemory final : public PictureMemory {
 public:
  SealedMemory(FileDescriptor fd, void* data, std::size_t size) : fd_(std::move(fd)), data_(data), size_(size) {}
  SealedMemory(const SealedMemory&) = delete;
  SealedMemory& operator=(const SealedMemory&) = delete;
  ~SealedMemory() override { ::munmap(data_, size_); }

  [[nodiscard]] const std::byte* data() const override { return static_cast<const std::byte*>(data_); }
  [[nodiscard]] std::size_t size() const override { return size_; }
  [[nodiscard]] int descriptor() const override { return fd_.get(); }

 private:
  FileDescriptor fd_;
  void* data_;
  std::size_t size_;
};

struct Received {
  std::size_t length = 0;
  std::shared_ptr<const PictureMemory> memory;
  bool isEnd = false;
  bool isNothing = false;
};

/// One datagram into `buffer`. One that is too long has the length 0, which no message has.
Received receive(int socket, std::array<char, LONGEST_MESSAGE>& buffer) {
  iovec part{buffer.data(), buffer.size()};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int) * 4)> control{};
  msghdr message{};
  message.msg_iov = &part;
  message.msg_iovlen = 1;
  message.msg_control = control.data();
  message.msg_controllen = control.size();
  Received received;
  ssize_t got = -1;
  do {
    got = ::recvmsg(socket, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
  } while (got < 0 && errno == EINTR);
  if (got <= 0) {
    received.isNothing = got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    received.isEnd = !received.isNothing;
    return received;
  }
  std::vector<FileDescriptor> descriptors;
  for (cmsghdr* c = CMSG_FIRSTHDR(&message); c != nullptr; c = CMSG_NXTHDR(&message, c)) {
    if (c->cmsg_level != SOL_SOCKET || c->cmsg_type != SCM_RIGHTS) continue;
    for (std::size_t at = 0; at + sizeof(int) <= c->cmsg_len - CMSG_LEN(0); at += sizeof(int)) {
      int fd = -1;
      std::memcpy(&fd, CMSG_DATA(c) + at, sizeof fd);
      descriptors.emplace_back(fd);
    }
  }
  if ((message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0) received.length = static_cast<std::size_t>(got);
  if (descriptors.size() == 1) {
    const int fd = ::fcntl(descriptors.front().get(), F_DUPFD_CLOEXEC, 3);
    received.memory = mapSealed(fd);
  }
  return received;
}

}  // namespace

std::shared_ptr<const PictureMemory> mapSealed(int fd) {
  FileDescriptor owned(fd);
  constexpr int NEEDED = F_SEAL_SHRINK | F_SEAL_GROW;
  const int seals = ::fcntl(fd, F_GET_SEALS);
  struct stat status {};
  if (seals < 0 || (seals & NEEDED) != NEEDED || ::fstat(fd, &status) != 0 || status.st_size <= 0) return nullptr;
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > LARGEST_MEMORY) return nullptr;
  void* data = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
  if (data == MAP_FAILED) return nullptr;
  return std::make_shared<SealedMemory>(std::move(owned), data, size);
}

/// Processes that were killed and have not gone yet: one that waits for a dead disk may take its time, and nobody here
/// waits for it.
struct PainterProcessLauncher::Unreaped {
  std::vector<pid_t> processes;
  void reap() {
    std::erase_if(processes, [](pid_t process) {
      const pid_t got = ::waitpid(process, nullptr, WNOHANG);
      return got == process || (got < 0 && errno != EINTR);
    });
  }
};

class PainterProcessLauncher::Child final : public PainterProcess {
 public:
  Child(pid_t process, FileDescriptor socket, PainterHandlers handlers, EventLoop& loop,
        std::shared_ptr<Unreaped> unreaped)
      : process_(process),
        socket_(std::move(socket)),
        handlers_(std::make_shared<PainterHandlers>(std::move(handlers))),
        unreaped_(std::move(unreaped)) {
    watch_ = loop.watch(socket_.get(), EPOLLIN, [this](std::uint32_t /*events*/) { read(); });
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() override {
    *isHere_ = false;
    watch_.reset();
    ::kill(process_, SIGKILL);
    unreaped_->processes.push_back(process_);
    unreaped_->reap();
  }

  void send(std::string_view order) override {
    ssize_t sent = -1;
    do {
      sent = ::send(socket_.get(), order.data(), order.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
  }

 private:
  void read() {
    static thread_local std::array<char, LONGEST_MESSAGE> buffer;
    const auto handlers = handlers_;
    const auto isHere = isHere_;
    for (int i = 0; i < MESSAGES_IN_A_TURN && *isHere; ++i) {
      const Received received = receive(socket_.get(), buffer);
      if (received.isNothing) break;
      if (received.isEnd) {
        watch_.reset();
        handlers->onEnd();
        break;
      }
      handlers->onAnswer({buffer.data(), received.length}, received.memory);
    }
  }

  pid_t process_;
  FileDescriptor socket_;
  std::shared_ptr<PainterHandlers> handlers_;
  std::shared_ptr<Unreaped> unreaped_;
  EventLoop::Watch watch_;
  std::shared_ptr<bool> isHere_ = std::make_shared<bool>(true);  ///< it may go inside its own call
};

PainterProcessLauncher::PainterProcessLauncher(std::string program, EventLoop& loop)
    : program_(std::move(program)), loop_(loop), unreaped_(std::make_shared<Unreaped>()) {}

PainterProcessLauncher::~PainterProcessLauncher() = default;

std::unique_ptr<PainterProcess> PainterProcessLauncher::start(PainterHandlers handlers) {
  unreaped_->reap();
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) != 0) return nullptr;
  FileDescriptor ours(ends[0]);
  const FileDescriptor theirs(ends[1]);
  std::vector<std::string> arguments{program_};
  std::vector<std::string> environment = environmentForIt();
  const std::vector<char*> argumentArray = pointers(arguments);
  const std::vector<char*> environmentArray = pointers(environment);
  const pid_t parent = ::getpid();
  const pid_t process = ::fork();
  if (process < 0) return nullptr;
  if (process == 0) {
    becomePainter(program_.c_str(), argumentArray.data(), environmentArray.data(), theirs.get(), parent);
  }
  return std::make_unique<Child>(process, std::move(ours), std::move(handlers), loop_, unreaped_);
}

}  // namespace dormel::paint
