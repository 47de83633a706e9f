// The painter: draws with QML what the guard says, into memory that both share. It has no display, no window and no
// keys; its one descriptor is the socket to the guard, and with that it ends. Main thread only.
#pragma once

#include "platform/linux/qt/QmlSceneRegistry.h"

namespace dormel::paint {

/// Draws the views that `scenes` knows until the guard is gone. Returns the process's exit status.
[[nodiscard]] int runPainter(QmlSceneRegistry scenes);

}  // namespace dormel::paint
