#include "platform/linux/updates/Address.h"

#include <algorithm>

namespace dormel::updates {
namespace {

constexpr std::size_t LONGEST = 2048;
constexpr std::string_view SECURE = "https://";
constexpr std::string_view PLAIN = "http://";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Four decimal numbers that begin with 127. "127.1" and "0x7f.0.0.1" are the same to some resolvers, not to us.
bool isLoopbackNumber(std::string_view host) {
  if (!host.starts_with("127.") || std::count(host.begin(), host.end(), '.') != 3) return false;
  if (host.ends_with('.') || host.find("..") != std::string_view::npos) return false;
  return std::all_of(host.begin(), host.end(), [](char c) { return c == '.' || isDigit(c); });
}

/// "host" and "host:port", split; the host is empty where that is not what it is.
std::string_view hostOf(std::string_view authority) {
  const std::size_t end = authority.starts_with('[') ? authority.find(']') + 1 : authority.find(':');
  const std::string_view host = authority.substr(0, end);
  const std::string_view port = authority.substr(host.size());
  if (!port.empty() &&
      (port.size() < 2 || port.size() > 6 || port[0] != ':' || !std::all_of(port.begin() + 1, port.end(), isDigit))) {
    return {};
  }
  return host;
}

}  // namespace

bool isAllowedAddress(std::string_view address) {
  if (address.size() > LONGEST) return false;
  const auto isPlainCharacter = [](char c) { return c > ' ' && c < 127 && c != '\\' && c != '"'; };
  if (!std::all_of(address.begin(), address.end(), isPlainCharacter)) return false;
  const bool secure = address.starts_with(SECURE);
  if (!secure && !address.starts_with(PLAIN)) return false;
  address.remove_prefix(secure ? SECURE.size() : PLAIN.size());
  const std::string_view authority = address.substr(0, address.find_first_of("/?#"));
  if (authority.find('@') != std::string_view::npos) return false;
  const std::string_view host = hostOf(authority);
  if (host.empty()) return false;
  return secure || host == "localhost" || host == "[::1]" || isLoopbackNumber(host);
}

bool isAllowedRedirect(std::string_view from, std::string_view to) {
  return isAllowedAddress(to) && (to.starts_with(SECURE) || !from.starts_with(SECURE));
}

}  // namespace dormel::updates
