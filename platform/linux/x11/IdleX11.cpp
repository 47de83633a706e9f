#include "platform/linux/x11/IdleX11.h"

#include <xcb/screensaver.h>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

Seconds IdleX11::secondsSinceLast(InputKind) const {
  if (!connection_ || !isKnown_) return -1;
  const auto reply = owned(xcb_screensaver_query_info_reply(
      *connection_, xcb_screensaver_query_info(*connection_, connection_->root()), nullptr));
  return reply ? reply->ms_since_user_input / 1000.0 : -1;
}

}  // namespace dormel::x11
