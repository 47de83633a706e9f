#include "platform/linux/x11/XdndTarget.h"

#include <algorithm>
#include <optional>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

constexpr std::uint32_t OURS = 5;
constexpr std::uint32_t OLDEST = 3;  // nothing older is around
constexpr int DEEPEST = 32;

std::optional<XdndTarget> awareWindow(Connection& c, const XdndTargetAtoms& atoms, xcb_window_t window) {
  xcb_window_t receiver = window;
  const auto proxy = c.property32(window, atoms.proxy);
  if (!proxy.empty()) {
    // One that does not name itself was left behind by a program that is gone.
    const auto itself = c.property32(proxy.front(), atoms.proxy);
    if (!itself.empty() && itself.front() == proxy.front()) receiver = proxy.front();
  }
  const auto version = c.property32(receiver, atoms.aware);
  if (version.empty() || version.front() < OLDEST) return {};
  return XdndTarget{window, receiver, std::min(version.front(), OURS)};
}

}  // namespace

XdndTargetAtoms::XdndTargetAtoms(Connection& connection) {
  const auto atoms = connection.atoms({"XdndAware", "XdndProxy"});
  aware = atoms[0];
  proxy = atoms[1];
}

XdndTarget findXdndTarget(Connection& connection, const XdndTargetAtoms& atoms, int x, int y) {
  const xcb_window_t root = connection.root();
  xcb_window_t window = root;
  for (int depth = 0; depth < DEEPEST; ++depth) {
    const auto cookie =
        xcb_translate_coordinates(connection, root, window, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    const auto reply = owned(xcb_translate_coordinates_reply(connection, cookie, nullptr));
    if (!reply || reply->child == XCB_NONE) break;
    window = reply->child;
    if (const auto target = awareWindow(connection, atoms, window)) return *target;
  }
  // Desktops that draw on the root window have its drops sent to them. Theirs are only those that meet no window.
  return window == root ? awareWindow(connection, atoms, root).value_or(XdndTarget{}) : XdndTarget{};
}

}  // namespace dormel::x11
