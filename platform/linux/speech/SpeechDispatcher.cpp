#include "platform/linux/speech/SpeechDispatcher.h"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/linux/posix/Environment.h"

namespace dormel::speech {
namespace {

constexpr Seconds RETRY_PAUSE = 0.5;
constexpr int MOST_TRIES = 20;
constexpr Seconds PATIENCE = 3.0;
constexpr std::size_t LONGEST_ANSWER = 65536;
constexpr const char* RECEIVING = "230";

/// A text as the protocol takes it: whole lines, none that would end it early.
std::string asData(const std::string& text) {
  std::string data;
  for (const char c : text) {
    if (c == '.' && (data.empty() || data.back() == '\n')) data += '.';
    if (c == '\n') data += '\r';
    data += c;
  }
  return data + "\r\n.\r\n";
}

}  // namespace

std::string serverSocket() {
  constexpr std::string_view UNIX = "unix_socket:";
  const std::string address = posix::environmentVariable("SPEECHD_ADDRESS");
  if (address.starts_with(UNIX) && address.size() > UNIX.size()) return address.substr(UNIX.size());
  const std::string folder = posix::environmentVariable("XDG_RUNTIME_DIR");
  return folder.empty() ? std::string() : folder + "/speech-dispatcher/speechd.sock";
}

SpeechDispatcher::SpeechDispatcher(EventLoop& loop, std::string socket, Task startServer)
    : loop_(loop), socket_(std::move(socket)), startServer_(std::move(startServer)) {}

void SpeechDispatcher::say(const std::string& text, const std::string& language) {
  wanted_ = {text, language};
  if (connection_.valid()) return next();
  if (retry_) return;
  tries_ = 0;
  if (connect()) return;
  startServer_();
  tryLater();
}

bool SpeechDispatcher::connect() {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (socket_.empty() || socket_.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, socket_.c_str(), socket_.size());
  posix::FileDescriptor made(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!made.valid() || ::connect(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    return false;
  }
  connection_ = std::move(made);
  watch_ = loop_.watch(connection_.get(), EPOLLIN, [this](std::uint32_t) { read(); });
  language_.clear();
  commands_ = {"SET self CLIENT_NAME user:dormel:lock", "SET self PRIORITY important"};
  next();
  return connection_.valid();
}

void SpeechDispatcher::drop() {
  watch_.reset();
  connection_.reset();
  patience_.invalidate();
  received_.clear();
  commands_.clear();
  speaking_.reset();
  isBusy_ = false;
}

void SpeechDispatcher::tryLater() {
  retry_ = Timer::once(loop_, RETRY_PAUSE, [this] {
    retry_ = Timer();
    if (!wanted_ || connect()) return;
    if (++tries_ < MOST_TRIES) tryLater();
  });
}

void SpeechDispatcher::next() {
  if (isBusy_) return;
  if (commands_.empty() && wanted_) {
    const Message message = *std::exchange(wanted_, std::nullopt);
    const std::string language = message.language.substr(0, message.language.find('_'));
    if (language != language_) commands_.push_back("SET self LANGUAGE " + language);
    language_ = language;
    commands_.push_back("CANCEL self");
    commands_.push_back("SPEAK");
    speaking_ = message.text;
  }
  if (commands_.empty()) return;
  isBusy_ = true;
  patience_ = Timer::once(loop_, PATIENCE, [this] { drop(); });
  send(commands_.front() + "\r\n");
}

void SpeechDispatcher::send(const std::string& bytes) {
  // A few hundred bytes: where they do not fit, nobody reads them.
  if (::send(connection_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size())) drop();
}

void SpeechDispatcher::read() {
  std::array<char, 4096> bytes{};
  const ssize_t count = ::recv(connection_.get(), bytes.data(), bytes.size(), 0);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
  if (count <= 0 || received_.size() > LONGEST_ANSWER) return drop();
  received_.append(bytes.data(), static_cast<std::size_t>(count));
  for (std::size_t end = received_.find('\n'); end != std::string::npos; end = received_.find('\n')) {
    const std::string line = received_.substr(0, end);
    received_.erase(0, end + 1);
    // The last line of an answer has a space after its number, all others a dash.
    if (line.size() > 3 && line[3] == ' ' && isBusy_) answered(line);
    if (!connection_.valid()) return;
  }
}

void SpeechDispatcher::answered(const std::string& line) {
  if (line.starts_with(RECEIVING) && speaking_) {
    const std::string data = asData(*std::exchange(speaking_, std::nullopt));
    return send(data);  // answered once more, when all of it is there
  }
  isBusy_ = false;
  patience_.invalidate();
  if (commands_.front() == "SPEAK") speaking_.reset();
  commands_.pop_front();
  next();
}

}  // namespace dormel::speech
