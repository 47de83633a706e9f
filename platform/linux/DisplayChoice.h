// Which family of displays is in force, decided from what is there. Plain computation.
#pragma once

#include <string>

namespace dormel {

/// What a process wants of its display.
enum class DisplayUse {
  ask,   ///< it shows nothing
  show,  ///< panels, and rehearsals of a lock
  lock,  ///< it is the one process that locks
};

/// What was found. A session usually has an X server, too, that is only a bridge into the Wayland compositor.
struct DisplayOffer {
  /// A compositor lets programs put surfaces above all others (a layer shell, and what panels need besides).
  bool overlay = false;
  /// It lets them keep its shortcuts from acting meanwhile.
  bool shortcutsInhibitor = false;
  /// It lets them lock the session.
  bool sessionLock = false;
  /// And a new client takes over a lock whose owner died; without that, nobody could end such a lock.
  bool allowsLockTakeover = true;
  bool x11 = false;
  /// GNOME Shell's extension answers.
  bool extension = false;
};

enum class DisplayKind {
  extension,    ///< GNOME Shell, by our extension of it
  sessionLock,  ///< a compositor's session lock, faded in and out by its overlay
  overlay,      ///< a compositor's overlay, with its shortcuts inhibited
  x11,          ///< an X server; where it is a bridge, panels show there and nothing can be locked
  none,
};

[[nodiscard]] inline DisplayKind chooseDisplay(const DisplayOffer& offer) {
  if (offer.extension) return DisplayKind::extension;
  if (offer.overlay && offer.sessionLock && offer.allowsLockTakeover) return DisplayKind::sessionLock;
  // An overlay that has the keyboard stops typing, but not the compositor's shortcuts.
  if (offer.overlay && offer.shortcutsInhibitor) return DisplayKind::overlay;
  return offer.x11 ? DisplayKind::x11 : DisplayKind::none;
}

/// The line that says so. `wayland` and `x11` are the displays' names.
[[nodiscard]] inline std::string describe(DisplayKind kind, const std::string& wayland, const std::string& x11) {
  switch (kind) {
    case DisplayKind::extension:
      return "[display] GNOME Shell's extension.";
    case DisplayKind::sessionLock:
      return "[display] Wayland " + wayland + ": session lock.";
    case DisplayKind::overlay:
      return "[display] Wayland " + wayland + ": overlay with the keyboard, shortcuts inhibited.";
    case DisplayKind::x11:
      return "[display] X11 " + x11 + ".";
    case DisplayKind::none:
      break;
  }
  return "[display] None.";
}

}  // namespace dormel
