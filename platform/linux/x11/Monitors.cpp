#include "platform/linux/x11/Monitors.h"

#include <xcb/randr.h>

#include <algorithm>

#include "platform/common/PixelRect.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

std::string atomName(xcb_connection_t* xcb, xcb_get_atom_name_cookie_t cookie) {
  const auto reply = owned(xcb_get_atom_name_reply(xcb, cookie, nullptr));
  if (!reply) return {};
  return {xcb_get_atom_name_name(reply.get()), static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

/// The server puts tiles together and knows virtual monitors.
std::vector<Monitor> monitorObjects(Connection& connection) {
  std::vector<Monitor> monitors;
  const auto reply = owned(
      xcb_randr_get_monitors_reply(connection, xcb_randr_get_monitors(connection, connection.root(), 1), nullptr));
  if (!reply) return monitors;
  std::vector<xcb_get_atom_name_cookie_t> names;
  for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0; xcb_randr_monitor_info_next(&it)) {
    const auto& m = *it.data;
    names.push_back(xcb_get_atom_name(connection, m.name));
    monitors.push_back({{}, {m.x, m.y, m.width, m.height}, m.primary != 0, static_cast<int>(m.width_in_millimeters)});
  }
  for (std::size_t i = 0; i < names.size(); ++i) monitors[i].name = atomName(connection, names[i]);
  return monitors;
}

std::vector<Monitor> wholeRoot(Connection& connection) {
  const auto reply =
      owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, connection.root()), nullptr));
  if (!reply) return {};
  return {{"default", {0, 0, reply->width, reply->height}, true, connection.screen().width_in_millimeters}};
}

std::vector<Monitor> withoutMirrors(const std::vector<Monitor>& monitors) {
  std::vector<Monitor> kept;
  for (std::size_t i = 0; i < monitors.size(); ++i) {
    bool isMirror = monitors[i].area.empty();
    for (std::size_t j = 0; j < monitors.size() && !isMirror; ++j) {
      if (i == j || !contains(monitors[j].area, monitors[i].area)) continue;
      isMirror = monitors[j].area != monitors[i].area || j < i;
    }
    if (!isMirror) kept.push_back(monitors[i]);
  }
  return kept;
}

}  // namespace

std::vector<Monitor> queryMonitors(Connection& connection, bool randr) {
  if (!randr) return wholeRoot(connection);
  std::vector<Monitor> monitors = monitorObjects(connection);
  std::stable_partition(monitors.begin(), monitors.end(), [](const Monitor& m) { return m.isPrimary; });
  monitors = withoutMirrors(monitors);
  if (!monitors.empty()) monitors.front().isPrimary = true;
  return monitors;
}

}  // namespace dormel::x11
