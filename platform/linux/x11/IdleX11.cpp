#include "platform/linux/x11/IdleX11.h"

#include <xcb/screensaver.h>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

/// Whoever wants to know of all kinds asks for one after the other: the server is asked once.
constexpr std::chrono::milliseconds SAME_MOMENT{5};

}  // namespace

Seconds IdleX11::secondsSinceLast(InputKind) const {
  if (!connection_ || !isKnown_) return -1;
  const auto now = std::chrono::steady_clock::now();
  if (askedAt_ && now - *askedAt_ < SAME_MOMENT) return answer_;
  askedAt_ = now;
  const auto reply = owned(xcb_screensaver_query_info_reply(
      *connection_, xcb_screensaver_query_info(*connection_, connection_->root()), nullptr));
  answer_ = reply ? reply->ms_since_user_input / 1000.0 : -1;
  return answer_;
}

}  // namespace dormel::x11
