// What this X server can do, asked once, and the event and opcode numbers that the extensions got on it. A missing
// extension leaves its numbers zero.
#pragma once

#include <cstdint>

#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

struct ServerFeatures {
  bool randr = false;     ///< RandR 1.5: monitors. Every server since 2015 has it
  bool xinput22 = false;  ///< XInput 2.2: raw events under anybody's grab
  bool xfixes = false;
  bool render = false;  ///< Render 0.10: solid pictures
  bool shape = false;
  bool screenSaver = false;
  bool sharedMemory = false;  ///< MIT-SHM 1.2 on this machine: memory can be handed over as a descriptor
  bool xkb = false;
  bool xwayland = false;  ///< the X bridge of a Wayland compositor, which never sees the whole keyboard

  std::uint8_t randrEvent = 0;
  std::uint8_t shapeEvent = 0;
  std::uint8_t sharedMemoryEvent = 0;
  std::uint8_t xfixesEvent = 0;
  std::uint8_t xkbEvent = 0;
  std::uint8_t xinputOpcode = 0;

  [[nodiscard]] static ServerFeatures query(Connection& connection);
  /// Tells the same server on a further connection of ours which XInput and keyboard extension it will be spoken to in.
  /// Extensions have the same numbers on all connections to a server.
  void announceInput(Connection& connection) const;
};

}  // namespace dormel::x11
