// What tells a letter of the challenge apart whose label does not: one that two keys share (Greek prints a sigma on W
// and on S), or a US legend that stands in for a key without a letter while another key types it (the M of AZERTY).
#pragma once

#include <string>
#include <vector>

#include "platform/Keyboard.h"

namespace dormel {

struct KeyLegend {
  KeyCode keyCode = 0;
  std::string text;
};

/// For each letter of the tables that needs one, by the layout of this moment: what the key prints ("prints ς",
/// "prints ,"), or where that is nothing or not its own, the key's place ("row 2, 3rd": rows of letters from the top,
/// keys from the left).
[[nodiscard]] std::vector<KeyLegend> keyLegends();

}  // namespace dormel
