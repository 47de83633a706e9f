#include "platform/linux/x11/WindowListX11.h"

namespace dormel::x11 {
namespace {

constexpr int ABOVE_ORDINARY = 25;

}  // namespace

std::optional<std::vector<ListedWindow>> WindowListX11::onScreen() const {
  const auto seen = clients_ ? clients_->seen() : std::nullopt;
  if (!seen) return {};
  std::vector<ListedWindow> windows;
  windows.reserve(seen->size());
  for (const SeenWindow& window : *seen) {
    // A window that the user pinned above the others is an ordinary one all the same.
    windows.push_back({window.pid, window.isOrdinary ? 0 : ABOVE_ORDINARY, screens_->displayBounds(window.area)});
  }
  return windows;
}

}  // namespace dormel::x11
