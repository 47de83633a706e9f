// Which addresses updates may come from. Any thread.
#pragma once

#include <string_view>

namespace dormel::updates {

/// HTTPS anywhere, and plain HTTP on this very machine (127.0.0.0/8, [::1], localhost), where there is no network to
/// listen on. No user names, nothing but printable ASCII, 2048 characters at most.
[[nodiscard]] bool isAllowedAddress(std::string_view address);

/// Whether an answer from `from` may send us to `to`: never from HTTPS to HTTP.
[[nodiscard]] bool isAllowedRedirect(std::string_view from, std::string_view to);

}  // namespace dormel::updates
