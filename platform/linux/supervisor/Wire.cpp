#include "platform/linux/supervisor/Wire.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

namespace dormel::jobs::supervisor {
namespace {

// A page or two of environment at the most; a longer message is no message of ours.
constexpr std::size_t LONGEST = 131072;

}  // namespace

bool sendWords(int connection, const Words& words) {
  std::string message;
  for (const std::string& word : words) message.append(word).push_back('\0');
  return ::send(connection, message.data(), message.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(message.size());
}

std::optional<Words> receiveWords(int connection, int timeout) {
  const timeval limit{timeout, 0};
  ::setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  std::string message(LONGEST, '\0');
  ssize_t length = 0;
  do {
    length = ::recv(connection, message.data(), message.size(), MSG_TRUNC);
  } while (length < 0 && errno == EINTR);
  if (length <= 0 || static_cast<std::size_t>(length) > message.size()) return {};
  message.resize(static_cast<std::size_t>(length));
  if (message.back() != '\0') return {};
  Words words;
  for (std::size_t at = 0; at < message.size();) {
    const auto end = message.find('\0', at);
    words.push_back(message.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

}  // namespace dormel::jobs::supervisor
