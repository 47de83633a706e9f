// The keys by which a user can leave an X server whatever is on it: zap (terminate), switching to another virtual
// terminal, breaking grabs, changing the video mode. They are actions in the keymap of every keyboard; disarming
// replaces them by "no action". What stood there is kept in a property of the root window, so that it can be given
// back by a later process when this one dies.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

/// The devices that have keys, keyboards or not. Others must never be asked for keyboard events: a server does not
/// forget who did, and when it is to end it goes round in circles over that.
[[nodiscard]] std::vector<std::uint16_t> keyDevices(Connection& connection, const ServerFeatures& features);

/// Asks for the events that tell of keyboards which come or go.
void selectHierarchy(Connection& connection, const ServerFeatures& features);
[[nodiscard]] bool isHierarchyChange(const xcb_generic_event_t& event, const ServerFeatures& features);

class ServerHotkeys {
 public:
  ServerHotkeys(std::shared_ptr<Connection> connection, const ServerFeatures& features);

  /// Takes the actions out of all keyboards' keymaps and remembers them. Doing it again catches keyboards and
  /// keymaps that came since; where nothing is left to take out, the server is not disturbed. Also asks for the
  /// events that `concerns` recognises.
  void disarm();

  /// Puts back what is remembered, by this process or an earlier one. A key whose keymap was changed meanwhile
  /// keeps its new actions.
  void restore();

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
  [[nodiscard]] std::vector<Keymap> keymaps(const std::vector<std::uint16_t>& devices);
  /// True when any of them was not watched before.
  [[nodiscard]] bool watch(const std::vector<Keymap>& keymaps);
  void store(const Keymap& keymap);
  void remember();
  void recall();

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  xcb_atom_t property_ = XCB_ATOM_NONE;
  std::vector<Taken> taken_;
  std::vector<std::uint16_t> watched_;
};

}  // namespace dormel::x11
