// A user's hands on the simulated keyboard.
#pragma once

#include "challenge/BypassController.h"
#include "platform/sim/SimMachine.h"

namespace dormel {

/// Presses every required key of the challenge, one after the other at this moment.
inline void pressAll(SimMachine& machine, BypassController& controller) {
  for (const RequiredKey& key : controller.requiredKeys()) machine.keyboard.press(key.keyCode);
  machine.settle();
}

/// The same where no tap runs: the controller is told of each key by hand.
inline void pressAllByHand(SimMachine& machine, BypassController& controller) {
  for (const RequiredKey& key : controller.requiredKeys()) {
    machine.keyboard.press(key.keyCode);
    if (key.isModifier) {
      controller.handleFlagsChanged(key.keyCode, machine.keyboard.flags());
    } else {
      controller.handleKeyDown(key.keyCode);
    }
  }
}

inline void releaseAll(SimMachine& machine) {
  machine.keyboard.releaseAll();
  machine.settle();
}

}  // namespace dormel
