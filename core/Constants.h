// The process-wide figures: set once, here, and never changed afterwards. Seconds unless noted.
#pragma once

#include <array>

#include "platform/Identifiers.h"

namespace dormel {

/// Hold times of the unlock challenge: the first unlock of a night, and every later one.
inline constexpr std::array<double, 2> BYPASS_DURATIONS{30.0, 60.0};
inline constexpr double GRACE_PERIOD_DURATION = 300.0;
/// How many keys one challenge requires. The draw follows (BypassController::pickRandomKeys). By hand go with it: the
/// width of the caps' row (464 points, in BlockerOverlayView.h and BlockerOverlay.qml), and whatever says five:
/// SpokenLock.cpp, EntryPoint.cpp, packaging/, README.md, docs/GLOSSARY.md and the rules in tools/nights.
inline constexpr int BYPASS_KEY_COUNT = 5;

inline constexpr double OVERLAY_FADE_IN_DURATION = 2.5;
inline constexpr double UNLOCK_CONFIRM_DURATION = 1.5;
inline constexpr double OVERLAY_UI_FADE_OUT_DURATION = 1.0;
inline constexpr double OVERLAY_FADE_OUT_DURATION = 1.2;

inline constexpr double TEST_HOLD_DURATION = 5.0;
inline constexpr double TEST_REBLOCK_HOLD_DURATION = 12.0;
inline constexpr double TEST_GRACE_DURATION = 10.0;
inline constexpr double DEMO_BACKSTOP_DURATION = 30.0;

}  // namespace dormel
