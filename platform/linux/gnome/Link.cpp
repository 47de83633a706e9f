#include "platform/linux/gnome/Link.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>

#include "platform/Identifiers.h"
#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/CreatedFolders.h"
#include "platform/linux/freedesktop/Opener.h"
#include "platform/linux/posix/Environment.h"

namespace dormel::gnome {
namespace {

constexpr std::chrono::milliseconds HELLO_LIMIT{1000};
constexpr std::size_t LONGEST_MESSAGE = 65536;
constexpr std::size_t HEADER = 4;

std::string framed(const std::string& kind, const Message& body) {
  // Bytes that are no UTF-8 would end the process here; a window's title may hold any.
  const std::string text = Message{{kind, body}}.dump(-1, ' ', false, Message::error_handler_t::replace);
  std::string bytes;
  for (unsigned shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(text.size() >> shift & 0xff);
  return bytes + text;
}

posix::FileDescriptor connected(const std::string& path) {
  posix::FileDescriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (!fd.valid() || path.size() >= sizeof address.sun_path) return {};
  path.copy(address.sun_path, path.size());
  if (::connect(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return {};
  return fd;
}

}  // namespace

bool isSession() { return freedesktop::isGnome() && !posix::environmentVariable("WAYLAND_DISPLAY").empty(); }

std::string socketPath() { return freedesktop::runtimeDirectory() + "/" + BUNDLE_IDENTIFIER + ".gnome"; }

std::string programsPath() { return freedesktop::stateHome() + "/" + BUNDLE_IDENTIFIER + ".gnome.programs"; }

void putIntoList() {
  const std::string own = posix::executableOf();
  if (own.empty()) return;
  std::string kept;
  std::ifstream file(programsPath());
  for (std::string line; std::getline(file, line);) {
    if (line == own) return;
    // A program that was moved or removed is nobody's any more.
    if (::access(line.c_str(), X_OK) == 0) kept += line + "\n";
  }
  const std::string folder = freedesktop::stateHome();
  if (::mkdir(folder.c_str(), S_IRWXU) == 0) freedesktop::noteCreatedFolder(folder);
  const std::string fresh = programsPath() + ".new";
  std::ofstream out(fresh, std::ios::trunc);
  out << kept << own << "\n";
  out.close();
  if (!out || ::rename(fresh.c_str(), programsPath().c_str()) != 0) ::unlink(fresh.c_str());
}

std::unique_ptr<Link> Link::open(Message& hello) {
  if (::access(socketPath().c_str(), F_OK) != 0) return nullptr;  // another desktop: nothing of this is for it
  putIntoList();
  auto socket = connected(socketPath());
  if (!socket.valid()) return nullptr;
  std::unique_ptr<Link> link(new Link(std::move(socket)));
  link->say("hello", {{"protocol", PROTOCOL}});
  link->flush();
  const auto limit = std::chrono::steady_clock::now() + HELLO_LIMIT;
  bool isAnswered = false;
  bool isOurs = false;
  while (!isAnswered) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - std::chrono::steady_clock::now()).count();
    pollfd wait{link->socket_.get(), POLLIN, 0};
    if (left <= 0 || ::poll(&wait, 1, static_cast<int>(left)) <= 0) return nullptr;
    std::array<char, 4096> bytes{};
    const ssize_t count = ::recv(link->socket_.get(), bytes.data(), bytes.size(), 0);
    if (count <= 0) return nullptr;
    link->received_.append(bytes.data(), static_cast<std::size_t>(count));
    const bool isSense = link->take([&](const std::string& kind, const Message& body) {
      if (kind != "hello") return;
      hello = body;
      isAnswered = true;
      isOurs = body.value("protocol", 0) == PROTOCOL;
    });
    if (!isSense || (isAnswered && !isOurs)) return nullptr;
  }
  return link;
}

Link::~Link() {
  if (onLost_) *onLost_ = nullptr;
}

void Link::start(EventLoop& loop, std::function<void(const std::string&, const Message&)> onMessage, Task onLost) {
  loop_ = &loop;
  onMessage_ = std::move(onMessage);
  onLost_ = std::make_shared<Task>(std::move(onLost));
  watch_ = loop.watch(socket_.get(), EPOLLIN, [this](std::uint32_t) { receive(); });
  flushing_ = loop.beforeWaiting([this] { flush(); });
}

void Link::say(const std::string& kind, const Message& body, int descriptor) {
  Outgoing message{framed(kind, body), {}, 0};
  if (descriptor >= 0) {
    message.descriptor = posix::FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
    message.bytes += '.';
  }
  queue_.push_back(std::move(message));
}

bool Link::sendSome(Outgoing& message) const {
  // The last byte carries the descriptor, and goes alone: the other side takes the two together.
  const bool isLast = message.descriptor.valid() && message.sent == message.bytes.size() - 1;
  const std::size_t end = message.bytes.size() - (message.descriptor.valid() && !isLast ? 1 : 0);
  iovec part{message.bytes.data() + message.sent, end - message.sent};
  msghdr header{};
  header.msg_iov = &part;
  header.msg_iovlen = 1;
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
  if (isLast) {
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    cmsghdr* const rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(int));
    const int fd = message.descriptor.get();
    std::memcpy(CMSG_DATA(rights), &fd, sizeof fd);
  }
  const ssize_t count = ::sendmsg(socket_.get(), &header, MSG_NOSIGNAL | MSG_DONTWAIT);
  if (count <= 0) return false;
  message.sent += static_cast<std::size_t>(count);
  return true;
}

void Link::flush() {
  while (!queue_.empty()) {
    Outgoing& message = queue_.front();
    if (!sendSome(message)) break;
    if (message.sent == message.bytes.size()) queue_.pop_front();
  }
  if (loop_ == nullptr || isWaitingToWrite_ == !queue_.empty()) return;
  isWaitingToWrite_ = !queue_.empty();
  watch_.reset();
  watch_ = loop_->watch(socket_.get(), EPOLLIN | (isWaitingToWrite_ ? EPOLLOUT : 0U), [this](std::uint32_t events) {
    if ((events & EPOLLOUT) != 0) flush();
    if ((events & ~std::uint32_t{EPOLLOUT}) != 0) receive();
  });
}

void Link::receive() {
  std::array<char, 16384> bytes{};
  const ssize_t count = ::recv(socket_.get(), bytes.data(), bytes.size(), 0);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
  if (count <= 0) return lose();
  received_.append(bytes.data(), static_cast<std::size_t>(count));
  if (!take(onMessage_)) lose();
}

void Link::lose() {
  watch_.reset();
  flushing_.reset();
  loop_->async([lost = onLost_] {
    if (const Task task = std::exchange(*lost, nullptr)) task();
  });
}

bool Link::take(const std::function<void(const std::string&, const Message&)>& onMessage) {
  while (received_.size() >= HEADER) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < HEADER; ++i) length |= std::size_t{static_cast<unsigned char>(received_[i])} << 8 * i;
    if (length > LONGEST_MESSAGE) return false;
    if (received_.size() < HEADER + length) return true;
    const Message message = Message::parse(received_.substr(HEADER, length), nullptr, false);
    received_.erase(0, HEADER + length);
    if (!message.is_object() || message.size() != 1) return false;
    try {
      onMessage(message.begin().key(), message.begin().value());
    } catch (const Message::exception&) {
      return false;  // a value of another kind than was agreed on
    }
  }
  return true;
}

void Link::releaseNow() const {
  const std::string bytes = framed("release", Message::object());
  static_cast<void>(::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT));
}

}  // namespace dormel::gnome
