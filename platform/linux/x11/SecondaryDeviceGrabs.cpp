#include "platform/linux/x11/SecondaryDeviceGrabs.h"

#include <utility>
#include <vector>

#include "platform/linux/x11/InputGrab.h"

namespace dormel::x11 {
namespace {

constexpr int RETRY_MILLISECONDS = 100;

}  // namespace

SecondaryDeviceGrabs::SecondaryDeviceGrabs(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)),
      features_(features),
      blank_(makeBlankCursor(*connection_)),
      again_(
          connection_->loop(), [this] { take(ask()); }, RETRY_MILLISECONDS) {}

SecondaryDeviceGrabs::~SecondaryDeviceGrabs() {
  release();
  xcb_free_cursor(*connection_, blank_);
}

SecondaryDeviceGrabs::Masters SecondaryDeviceGrabs::ask() {
  if (!features_.xinput22) return {};
  Connection& c = *connection_;
  return {{c, xcb_input_xi_get_client_pointer(c, XCB_NONE)},
          {c, xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL_MASTER)}};
}

void SecondaryDeviceGrabs::take(Masters asked) {
  Connection& c = *connection_;
  const auto usual = asked.usual.take();
  const auto masters = asked.all.take();
  if (!usual || !masters) return;
  std::vector<xcb_input_xi_grab_device_cookie_t> cookies;
  std::vector<std::uint16_t> others;
  for (auto it = xcb_input_xi_query_device_infos_iterator(masters.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    if (it.data->deviceid == usual->deviceid || it.data->attachment == usual->deviceid) continue;
    const std::uint32_t noEvents = 0;
    others.push_back(it.data->deviceid);
    cookies.push_back(xcb_input_xi_grab_device(c, c.root(), XCB_CURRENT_TIME, blank_, it.data->deviceid,
                                               XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, 0, 1,
                                               &noEvents));
  }
  taken_.clear();
  bool missed = false;
  for (std::size_t i = 0; i < others.size(); ++i) {
    const auto reply = owned(xcb_input_xi_grab_device_reply(c, cookies[i], nullptr));
    if (reply && reply->status == XCB_GRAB_STATUS_SUCCESS) {
      taken_.insert(others[i]);
    } else {
      missed = true;
    }
  }
  if (missed && c.isAlive()) again_.ask();
}

void SecondaryDeviceGrabs::release() {
  again_.forget();
  for (const std::uint16_t device : std::exchange(taken_, {})) {
    xcb_input_xi_ungrab_device(*connection_, XCB_CURRENT_TIME, device);
  }
  connection_->flush();
}

}  // namespace dormel::x11
