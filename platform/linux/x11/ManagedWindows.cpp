#include "platform/linux/x11/ManagedWindows.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

namespace dormel::x11 {
namespace {

constexpr std::uint32_t SOURCE_PAGER = 2;
constexpr std::uint32_t ICONIC_STATE = 3;

}  // namespace

void ManagedWindows::send(xcb_window_t window, xcb_atom_t type, const std::vector<std::uint32_t>& data) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = type;
  std::copy(data.begin(), data.end(), std::begin(message.data.data32));
  xcb_send_event(*connection_, 0, connection_->root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&message));
}

std::vector<std::uint32_t> ManagedWindows::clients() {
  return connection_->property32(connection_->root(), "_NET_CLIENT_LIST");
}

void ManagedWindows::activate(xcb_window_t window) {
  if (!connection_) return;
  send(window, connection_->atom("_NET_ACTIVE_WINDOW"), {SOURCE_PAGER, XCB_CURRENT_TIME, XCB_NONE});
  connection_->flush();
}

bool ManagedWindows::canHideOthers() {
  return connection_ && !connection_->property32(connection_->root(), "_NET_SUPPORTING_WM_CHECK").empty();
}

void ManagedWindows::hideOthers() {
  if (!connection_) return;
  for (const xcb_window_t window : clients()) {
    const auto has = [&](const char* property, std::uint32_t value) {
      const auto values = connection_->property32(window, property);
      return std::find(values.begin(), values.end(), value) != values.end();
    };
    const auto is = [&](const char* property, const char* value) { return has(property, connection_->atom(value)); };
    if (has("_NET_WM_PID", static_cast<std::uint32_t>(::getpid())) || is("_NET_WM_STATE", "_NET_WM_STATE_HIDDEN") ||
        is("_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP") ||
        is("_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DOCK")) {
      continue;
    }
    send(window, connection_->atom("WM_CHANGE_STATE"), {ICONIC_STATE});
    hidden_.push_back(window);
  }
  connection_->flush();
}

void ManagedWindows::showOthers() {
  if (!connection_) return;
  const auto present = clients();
  // Asking a minimised window's manager to map it is how one un-minimises it.
  for (const xcb_window_t window : std::exchange(hidden_, {})) {
    if (std::find(present.begin(), present.end(), window) != present.end()) xcb_map_window(*connection_, window);
  }
  connection_->flush();
}

}  // namespace dormel::x11
