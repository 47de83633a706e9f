// Screens other than ours: the small ones, scaled up, and the finest. What is drawn must fit all of them.
#pragma once

#include <algorithm>
#include <array>

#include "platform/Geometry.h"

namespace dormel {

struct StrangersScreen {
  const char* name;
  int width;  ///< pixels
  int height;
  double scale;

  /// The room for a window, in points: all but the desktop's bar.
  [[nodiscard]] Size room() const { return {width / scale, height / scale - 32}; }
  /// What the screen leaves of a window that wants to be so large.
  [[nodiscard]] Size sizeOf(const Size& wanted) const {
    return {std::min(wanted.width, room().width), std::min(wanted.height, room().height)};
  }
};

inline constexpr std::array STRANGERS_SCREENS{
    StrangersScreen{"768p-100", 1366, 768, 1}, StrangersScreen{"768p-175", 1366, 768, 1.75},
    StrangersScreen{"768p-200", 1366, 768, 2}, StrangersScreen{"800p-150", 1280, 800, 1.5},
    StrangersScreen{"4k-200", 3840, 2160, 2},
};

/// Each of them in English, and the one with least room in every other language.
struct ForeignScreen {
  StrangersScreen screen;
  const char* language;
};
inline constexpr std::array FOREIGN_SCREENS{
    ForeignScreen{STRANGERS_SCREENS[0], "en"}, ForeignScreen{STRANGERS_SCREENS[1], "en"},
    ForeignScreen{STRANGERS_SCREENS[2], "en"}, ForeignScreen{STRANGERS_SCREENS[3], "en"},
    ForeignScreen{STRANGERS_SCREENS[4], "en"}, ForeignScreen{STRANGERS_SCREENS[2], "de"},
    ForeignScreen{STRANGERS_SCREENS[2], "fr"},
};

}  // namespace dormel
