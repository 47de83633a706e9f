#include "platform/linux/wayland/Inhibitors.h"

#include <algorithm>

#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {

void Inhibitors::add(wl_surface* surface) {
  inhibitors_[surface];
  seatsChanged();
}

void Inhibitors::remove(wl_surface* surface) { inhibitors_.erase(surface); }

void Inhibitors::seatsChanged() {
  auto* const manager = connection_.globals().shortcutsInhibit.get();
  if (manager == nullptr) return;
  for (auto& [surface, bySeat] : inhibitors_) {
    std::erase_if(bySeat, [&](const auto& one) {
      return std::none_of(keyboard_.seats().begin(), keyboard_.seats().end(),
                          [&](const Keyboard::Seat& seat) { return seat.handle.get() == one.first; });
    });
    for (const Keyboard::Seat& seat : keyboard_.seats()) {
      auto& inhibitor = bySeat[seat.handle.get()];
      if (inhibitor) continue;
      inhibitor.reset(zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(manager, surface, seat.handle.get()));
    }
  }
}

}  // namespace dormel::wayland
