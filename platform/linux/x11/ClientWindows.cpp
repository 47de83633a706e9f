#include "platform/linux/x11/ClientWindows.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

using Words = std::vector<std::uint32_t>;

constexpr std::uint32_t ALL_WORKSPACES = 0xffffffff;
using Property = Asked<&xcb_get_property_reply>;

Words words(Property& property) { return Connection::items(std::move(property)); }

bool has(const Words& values, xcb_atom_t value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

/// A process, or failing that a connection to the server: every one gives its windows numbers from a range of its own.
std::int32_t owner(Connection& c, xcb_window_t window, const Words& pid) {
  if (!pid.empty()) return static_cast<std::int32_t>(pid.front());
  return -static_cast<std::int32_t>(window & ~xcb_get_setup(c)->resource_id_mask);
}

/// Four lengths, in the order left, right, top, bottom; outwards is positive.
PixelRect grown(const PixelRect& r, const Words& by, int sign) {
  if (by.size() != 4) return r;
  const auto length = [&](std::size_t i) { return sign * static_cast<int>(by[i]); };
  return {r.x - length(0), r.y - length(2), r.width + length(0) + length(1), r.height + length(2) + length(3)};
}

}  // namespace

std::vector<ClientWindow> ClientWindows::describe(const std::vector<xcb_window_t>& windows) const {
  Connection& c = *connection_;
  struct Question {
    xcb_window_t window;
    Property pid, names, state;
  };
  std::vector<Question> questions;
  questions.reserve(windows.size());
  for (const xcb_window_t w : windows) {
    questions.push_back(
        {w, c.askProperty(w, "_NET_WM_PID"), c.askProperty(w, XCB_ATOM_WM_CLASS), c.askProperty(w, "_NET_WM_STATE")});
  }
  std::vector<ClientWindow> found;
  for (Question& q : questions) {
    const std::string names = Connection::text(std::move(q.names));
    const auto split = names.find('\0');
    ClientWindow one{owner(c, q.window, words(q.pid)), names.substr(0, split),
                     split == std::string::npos ? std::string() : names.substr(split + 1),
                     has(words(q.state), c.atom("_NET_WM_STATE_SKIP_TASKBAR"))};
    if (one.className.ends_with('\0')) one.className.pop_back();
    found.push_back(std::move(one));
  }
  return found;
}

std::vector<ClientWindow> ClientWindows::all() const {
  return describe(connection_->property32(connection_->root(), "_NET_CLIENT_LIST"));
}

std::optional<ClientWindow> ClientWindows::active() const {
  const Words active = connection_->property32(connection_->root(), "_NET_ACTIVE_WINDOW");
  if (active.empty() || active.front() == XCB_NONE) return {};
  return describe({active.front()}).front();
}

std::optional<std::vector<SeenWindow>> ClientWindows::seen() const {
  Connection& c = *connection_;
  auto stacking = c.askProperty(c.root(), "_NET_CLIENT_LIST_STACKING");
  auto workspace = c.askProperty(c.root(), "_NET_CURRENT_DESKTOP");
  const auto list = stacking.take();
  const Words current = words(workspace);
  if (!list || list->format != 32) return {};
  const auto* const lowest = static_cast<const xcb_window_t*>(xcb_get_property_value(list.get()));

  struct Question {
    xcb_window_t window;
    Property pid, state, desktop, type, frame, shadow;
    Asked<&xcb_get_window_attributes_reply> attributes;
    Asked<&xcb_get_geometry_reply> geometry;
    Asked<&xcb_translate_coordinates_reply> place;
  };
  std::vector<Question> questions;
  questions.reserve(list->value_len);
  for (const auto* w = lowest + list->value_len; w-- != lowest;) {
    questions.push_back({*w,
                         c.askProperty(*w, "_NET_WM_PID"),
                         c.askProperty(*w, "_NET_WM_STATE"),
                         c.askProperty(*w, "_NET_WM_DESKTOP"),
                         c.askProperty(*w, "_NET_WM_WINDOW_TYPE"),
                         c.askProperty(*w, "_NET_FRAME_EXTENTS"),
                         c.askProperty(*w, "_GTK_FRAME_EXTENTS"),
                         {c, xcb_get_window_attributes(c, *w)},
                         {c, xcb_get_geometry(c, *w)},
                         {c, xcb_translate_coordinates(c, *w, c.root(), 0, 0)}});
  }
  std::vector<SeenWindow> found;
  for (Question& q : questions) {
    const Words desktop = words(q.desktop);
    const Words type = words(q.type);
    const auto is = [&](const char* name) { return has(type, c.atom(name)); };
    const auto attributes = q.attributes.take();
    const auto geometry = q.geometry.take();
    const auto place = q.place.take();
    if (!attributes || !geometry || !place) continue;  // gone meanwhile
    const bool isElsewhere =
        !desktop.empty() && !current.empty() && desktop.front() != ALL_WORKSPACES && desktop.front() != current.front();
    // Window managers that compose pictures keep minimised windows mapped.
    if (attributes->map_state != XCB_MAP_STATE_VIEWABLE || has(words(q.state), c.atom("_NET_WM_STATE_HIDDEN")) ||
        isElsewhere || is("_NET_WM_WINDOW_TYPE_DESKTOP") || is("_NET_WM_WINDOW_TYPE_DOCK")) {
      continue;
    }
    const PixelRect client{place->dst_x, place->dst_y, geometry->width, geometry->height};
    const bool isOrdinary = type.empty() || is("_NET_WM_WINDOW_TYPE_NORMAL") || is("_NET_WM_WINDOW_TYPE_DIALOG") ||
                            is("_NET_WM_WINDOW_TYPE_UTILITY");
    found.push_back(
        {owner(c, q.window, words(q.pid)), isOrdinary, grown(grown(client, words(q.shadow), -1), words(q.frame), 1)});
  }
  return found;
}

}  // namespace dormel::x11
