// A user's hands on the simulated keyboard.
#pragma once

#include "challenge/BypassController.h"
#include "platform/sim/SimMachine.h"

namespace dormel {

/// Presses every required key of the challenge, one after the other at this moment.
inline void pressAll(SimMachine& machine, const BypassController& controller) {
  for (const RequiredKey& key : controller.requiredKeys()) machine.keyboard.press(key.keyCode);
  machine.settle();
}

inline void releaseAll(SimMachine& machine) {
  machine.keyboard.releaseAll();
  machine.settle();
}

}  // namespace dormel
