// The keys by which a user can leave an X server whatever is on it: zap (terminate), switching to another virtual
// terminal, breaking grabs, changing the video mode. They are actions in the keymap of every keyboard; disarming
// replaces them by "no action". What stood there is kept in a property of the root window, so that it can be given
// back by a later process when this one dies.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeyDevices.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/ServerFeatures.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {

class ServerHotkeys {
 public:
  ServerHotkeys(std::shared_ptr<Connection> connection, const ServerFeatures& features);

  /// What `disarm` has to know of the keyboards, on its way.
  struct Keymaps {
    KeyDevices devices;
    std::vector<Asked<&xcb_xkb_get_map_reply>> asked;  ///< one for each
  };
  [[nodiscard]] Keymaps ask(const KeyDevices& devices);

  /// Takes the actions out of all keyboards' keymaps and remembers them. Doing it again catches keyboards and
  /// keymaps that came since; where nothing is left to take out, the server is not disturbed. Also asks for the
  /// events that `concerns` recognises; true when it asked for new ones: what changed before, they do not tell.
  [[nodiscard]] bool disarm(Keymaps keymaps);

  /// Puts back what is remembered, by this process or an earlier one. A key whose keymap was changed meanwhile
  /// keeps its new actions.
  void restore() { restore(askLeft()); }
  /// What an earlier process left to be put back, on its way.
  [[nodiscard]] Asked<&xcb_get_property_reply> askLeft() {
    return connection_->askProperty(connection_->root(), property_);
  }
  void restore(Asked<&xcb_get_property_reply> left);

  /// Whether the event tells of a change that may have brought such actions back.
  [[nodiscard]] bool concerns(const xcb_generic_event_t& event) const;

 private:
  /// One action that was taken out: where it stood, and its eight bytes.
  struct Taken {
    std::uint32_t device;
    std::uint32_t keycode;
    std::uint32_t index;  ///< among the key's actions
    std::uint32_t bytes[2];
  };
  struct Keymap;
  [[nodiscard]] static std::vector<Keymap> answers(Keymaps keymaps);
  /// True when any of them was not watched before.
  [[nodiscard]] bool watch(const std::vector<Keymap>& keymaps);
  void store(const Keymap& keymap);
  void remember();
  void recall(Asked<&xcb_get_property_reply> left);

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  xcb_atom_t property_ = XCB_ATOM_NONE;
  std::vector<Taken> taken_;
  std::vector<std::uint16_t> watched_;
};

}  // namespace dormel::x11
