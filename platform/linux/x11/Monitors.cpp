#include "platform/linux/x11/Monitors.h"

#include <xcb/randr.h>

#include <algorithm>
#include <optional>

#include "platform/common/PixelRect.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

std::string atomName(xcb_connection_t* xcb, xcb_get_atom_name_cookie_t cookie) {
  const auto reply = owned(xcb_get_atom_name_reply(xcb, cookie, nullptr));
  if (!reply) return {};
  return {xcb_get_atom_name_name(reply.get()), static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get()))};
}

/// RandR 1.5: the server puts tiles together and knows virtual monitors.
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

struct Crtcs {
  std::vector<xcb_randr_crtc_t> ids;
  xcb_timestamp_t time = 0;
};

template <typename R>
Crtcs crtcsOf(const R* resources, const xcb_randr_crtc_t* ids, int count) {
  return {{ids, ids + count}, resources->config_timestamp};
}

std::optional<Crtcs> queryCrtcs(Connection& connection, int randr) {
  if (randr >= 3) {  // what the server knows already; the older request probes every connector and takes its time
    const auto r = owned(xcb_randr_get_screen_resources_current_reply(
        connection, xcb_randr_get_screen_resources_current(connection, connection.root()), nullptr));
    if (!r) return std::nullopt;
    return crtcsOf(r.get(), xcb_randr_get_screen_resources_current_crtcs(r.get()),
                   xcb_randr_get_screen_resources_current_crtcs_length(r.get()));
  }
  const auto r = owned(xcb_randr_get_screen_resources_reply(
      connection, xcb_randr_get_screen_resources(connection, connection.root()), nullptr));
  if (!r) return std::nullopt;
  return crtcsOf(r.get(), xcb_randr_get_screen_resources_crtcs(r.get()),
                 xcb_randr_get_screen_resources_crtcs_length(r.get()));
}

/// RandR 1.2 to 1.4.
std::vector<Monitor> activeCrtcs(Connection& connection, int randr) {
  std::vector<Monitor> monitors;
  const auto crtcs = queryCrtcs(connection, randr);
  if (!crtcs) return monitors;
  xcb_randr_output_t primary = XCB_NONE;
  if (randr >= 3) {
    const auto reply = owned(xcb_randr_get_output_primary_reply(
        connection, xcb_randr_get_output_primary(connection, connection.root()), nullptr));
    if (reply) primary = reply->output;
  }
  for (const auto id : crtcs->ids) {
    const auto crtc =
        owned(xcb_randr_get_crtc_info_reply(connection, xcb_randr_get_crtc_info(connection, id, crtcs->time), nullptr));
    if (!crtc || crtc->mode == XCB_NONE || crtc->num_outputs == 0) continue;
    const auto* outputs = xcb_randr_get_crtc_info_outputs(crtc.get());
    Monitor monitor;
    monitor.area = {crtc->x, crtc->y, crtc->width, crtc->height};
    monitor.isPrimary = std::find(outputs, outputs + crtc->num_outputs, primary) != outputs + crtc->num_outputs;
    const auto output = owned(xcb_randr_get_output_info_reply(
        connection, xcb_randr_get_output_info(connection, outputs[0], crtcs->time), nullptr));
    if (output) {
      monitor.name.assign(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(output.get())),
                          static_cast<std::size_t>(xcb_randr_get_output_info_name_length(output.get())));
      monitor.widthMillimetres = static_cast<int>(output->mm_width);
    }
    monitors.push_back(std::move(monitor));
  }
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

std::vector<Monitor> queryMonitors(Connection& connection, int randr) {
  if (randr < 2) return wholeRoot(connection);
  std::vector<Monitor> monitors = randr >= 5 ? monitorObjects(connection) : activeCrtcs(connection, randr);
  std::stable_partition(monitors.begin(), monitors.end(), [](const Monitor& m) { return m.isPrimary; });
  monitors = withoutMirrors(monitors);
  if (!monitors.empty()) monitors.front().isPrimary = true;
  return monitors;
}

}  // namespace dormel::x11
