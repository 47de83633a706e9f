#include "platform/linux/x11/ClientWindows.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

using Words = std::vector<std::uint32_t>;

constexpr std::uint32_t ALL_WORKSPACES = 0xffffffff;
constexpr std::uint32_t MOST_WORDS = 64;

xcb_get_property_cookie_t ask(Connection& c, xcb_window_t window, xcb_atom_t property) {
  return xcb_get_property(c, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, MOST_WORDS);
}

Words words(Connection& c, xcb_get_property_cookie_t cookie) {
  const auto reply = owned(xcb_get_property_reply(c, cookie, nullptr));
  if (!reply || reply->format != 32) return {};
  const auto* items = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {items, items + reply->value_len};
}

std::string text(Connection& c, xcb_get_property_cookie_t cookie) {
  const auto reply = owned(xcb_get_property_reply(c, cookie, nullptr));
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

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

ClientWindows::ClientWindows(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {
  const auto atoms = connection_->atoms(
      {"_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING", "_NET_ACTIVE_WINDOW", "_NET_WM_PID", "_NET_WM_STATE",
       "_NET_WM_STATE_HIDDEN", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_DESKTOP", "_NET_CURRENT_DESKTOP",
       "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_WINDOW_TYPE_DOCK", "_NET_WM_WINDOW_TYPE_NORMAL",
       "_NET_WM_WINDOW_TYPE_DIALOG", "_NET_WM_WINDOW_TYPE_UTILITY", "_NET_FRAME_EXTENTS", "_GTK_FRAME_EXTENTS"});
  auto next = atoms.begin();
  for (xcb_atom_t* atom : {&clientList_, &clientListStacking_, &activeWindow_, &pid_, &state_, &stateHidden_,
                           &stateSkipTaskbar_, &desktop_, &currentDesktop_, &type_, &typeDesktop_, &typeDock_,
                           &typeNormal_, &typeDialog_, &typeUtility_, &frameExtents_, &gtkFrameExtents_}) {
    *atom = *next++;
  }
}

std::vector<ClientWindow> ClientWindows::describe(const std::vector<xcb_window_t>& windows) const {
  Connection& c = *connection_;
  struct Question {
    xcb_get_property_cookie_t pid, names, state;
  };
  std::vector<Question> questions;
  questions.reserve(windows.size());
  for (const xcb_window_t w : windows) {
    questions.push_back({ask(c, w, pid_), ask(c, w, XCB_ATOM_WM_CLASS), ask(c, w, state_)});
  }
  std::vector<ClientWindow> found;
  for (std::size_t i = 0; i < windows.size(); ++i) {
    const Words pid = words(c, questions[i].pid);
    const std::string names = text(c, questions[i].names);
    const Words state = words(c, questions[i].state);
    const auto split = names.find('\0');
    ClientWindow one{owner(c, windows[i], pid), names.substr(0, split),
                     split == std::string::npos ? std::string() : names.substr(split + 1),
                     has(state, stateSkipTaskbar_)};
    if (one.className.ends_with('\0')) one.className.pop_back();
    found.push_back(std::move(one));
  }
  return found;
}

std::vector<ClientWindow> ClientWindows::all() const {
  return describe(connection_->property32(connection_->root(), clientList_));
}

std::optional<ClientWindow> ClientWindows::active() const {
  const Words active = connection_->property32(connection_->root(), activeWindow_);
  if (active.empty() || active.front() == XCB_NONE) return {};
  return describe({active.front()}).front();
}

std::optional<std::vector<SeenWindow>> ClientWindows::seen() const {
  Connection& c = *connection_;
  const auto manager = ask(c, c.root(), clientListStacking_);
  const auto workspace = ask(c, c.root(), currentDesktop_);
  const auto list = owned(xcb_get_property_reply(c, manager, nullptr));
  const Words current = words(c, workspace);
  if (!list || list->format != 32) return {};
  const Words stack = c.property32(c.root(), clientListStacking_);

  struct Question {
    xcb_window_t window;
    xcb_get_property_cookie_t pid, state, desktop, type, frame, shadow;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t place;
  };
  std::vector<Question> questions;
  questions.reserve(stack.size());
  for (auto w = stack.rbegin(); w != stack.rend(); ++w) {
    questions.push_back({*w, ask(c, *w, pid_), ask(c, *w, state_), ask(c, *w, desktop_), ask(c, *w, type_),
                         ask(c, *w, frameExtents_), ask(c, *w, gtkFrameExtents_), xcb_get_window_attributes(c, *w),
                         xcb_get_geometry(c, *w), xcb_translate_coordinates(c, *w, c.root(), 0, 0)});
  }
  std::vector<SeenWindow> found;
  for (const Question& q : questions) {
    const Words pid = words(c, q.pid);
    const Words state = words(c, q.state);
    const Words desktop = words(c, q.desktop);
    const Words type = words(c, q.type);
    const Words frame = words(c, q.frame);
    const Words shadow = words(c, q.shadow);
    const auto attributes = owned(xcb_get_window_attributes_reply(c, q.attributes, nullptr));
    const auto geometry = owned(xcb_get_geometry_reply(c, q.geometry, nullptr));
    const auto place = owned(xcb_translate_coordinates_reply(c, q.place, nullptr));
    if (!attributes || !geometry || !place) continue;  // gone meanwhile
    const bool isElsewhere =
        !desktop.empty() && !current.empty() && desktop.front() != ALL_WORKSPACES && desktop.front() != current.front();
    // Window managers that compose pictures keep minimised windows mapped.
    if (attributes->map_state != XCB_MAP_STATE_VIEWABLE || has(state, stateHidden_) || isElsewhere ||
        has(type, typeDesktop_) || has(type, typeDock_)) {
      continue;
    }
    const PixelRect client{place->dst_x, place->dst_y, geometry->width, geometry->height};
    const bool isOrdinary = type.empty() || has(type, typeNormal_) || has(type, typeDialog_) || has(type, typeUtility_);
    found.push_back({owner(c, q.window, pid), isOrdinary, grown(grown(client, shadow, -1), frame, 1)});
  }
  return found;
}

}  // namespace dormel::x11
