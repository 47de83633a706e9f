#include "platform/linux/x11/X11Platform.h"

#include <chrono>
#include <limits>
#include <utility>

#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/posix/PosixQueues.h"

namespace dormel::x11 {
namespace {

constexpr std::chrono::milliseconds RESTORE_LIMIT{500};

/// The atoms of a start are asked for in its first message: each would be a question of its own else, for which the
/// screens wait bare.
std::shared_ptr<Connection> connect(EventLoop& loop, const std::string& display) {
  auto connection = Connection::open(loop, display);
  if (!connection) return nullptr;
  connection->expectAtoms({"UTF8_STRING",
                           "_DORMEL_KEY_ACTIONS",
                           "_DORMEL_LOCKDOWN",
                           "_DORMEL_LOCKED_STATE",
                           "_GTK_FRAME_EXTENTS",
                           "_NET_ACTIVE_WINDOW",
                           "_NET_CLIENT_LIST",
                           "_NET_CLIENT_LIST_STACKING",
                           "_NET_CURRENT_DESKTOP",
                           "_NET_FRAME_EXTENTS",
                           "_NET_WM_CM_S" + std::to_string(connection->screenNumber()),
                           "_NET_WM_DESKTOP",
                           "_NET_WM_NAME",
                           "_NET_WM_PID",
                           "_NET_WM_STATE",
                           "_NET_WM_STATE_HIDDEN",
                           "_NET_WM_STATE_SKIP_TASKBAR",
                           "_NET_WM_WINDOW_OPACITY",
                           "_NET_WM_WINDOW_TYPE",
                           "_NET_WM_WINDOW_TYPE_DESKTOP",
                           "_NET_WM_WINDOW_TYPE_DIALOG",
                           "_NET_WM_WINDOW_TYPE_DOCK",
                           "_NET_WM_WINDOW_TYPE_NORMAL",
                           "_NET_WM_WINDOW_TYPE_NOTIFICATION",
                           "_NET_WM_WINDOW_TYPE_UTILITY",
                           "_NET_WORKAREA"});
  return connection;
}

}  // namespace

X11Platform::X11Platform(EventLoop& loop, CanvasFactory& canvases, const Clock& clock, const std::string& display)
    : connection_(connect(loop, display)),
      features_(connection_ ? ServerFeatures::query(*connection_) : ServerFeatures{}),
      screens_(std::make_shared<ScreensX11>(loop, connection_, features_)),
      numbering_(connection_, features_),
      accessXSuspension_(connection_ ? AccessXSuspension::create(connection_, features_) : nullptr),
      accessibility_(connection_, features_),
      eventTaps_(connection_, features_, accessXSuspension_),
      hardwareKeys_(connection_, features_, numbering_),
      inputIdle_(connection_, features_),
      layout_(connection_, features_, numbering_),
      windows_(loop, connection_, features_, screens_, canvases, clock),
      runningApplications_(loop, connection_),
      windowList_(connection_, screens_),
      managedWindows_(connection_),
      lockdown_(connection_ ? std::make_unique<Lockdown>(connection_, features_, accessXSuspension_) : nullptr),
      display_(display) {
  if (connection_) connection_->startPumping();
}

X11Platform::~X11Platform() {
  if (connection_) connection_->stopPumping();
}

void X11Platform::setOnLost(Task onLost) {
  if (!connection_) return;
  // Somebody may cut a tap's connection alone, and the lock would stand with the keyboard open until morning.
  eventTaps_.setOnLost([this, onLost] {
    if (isLockedDown_ && !isEnding_) onLost();
  });
  connection_->setOnLost([this, onLost = std::move(onLost)] {
    if (!isEnding_) onLost();
  });
}

void X11Platform::setOnScreensChanged(Task onChange) { screens_->setOnChange(std::move(onChange)); }

bool X11Platform::isKeyDownSwallowed(unsigned keycode) {
  if (keycode > std::numeric_limits<xcb_keycode_t>::max()) return false;
  const KeyCode key = windows_.keyCode(static_cast<xcb_keycode_t>(keycode));
  return windows_.isSwallowed({isModifierKey(key) ? EventType::flagsChanged : EventType::keyDown, key, 0});
}

void X11Platform::setLockdown(bool on) {
  if (!lockdown_) return;
  if (on) isLockedDown_ = true;  // before the first key action goes
  lockdown_->set(on);
  if (!on) isLockedDown_ = false;
}

void X11Platform::restoreAtExit(bool /*comesBack*/) {
  if (!isLockedDown_ && !(accessXSuspension_ && accessXSuspension_->isHeld())) return;
  isEnding_ = true;
  // Without a thread the next start gives them back.
  posix::doWithin(RESTORE_LIMIT, [display = display_, client = lockdown_->client(), focus = windows_.focusOwed()] {
    Lockdown::bequeath(display, client, focus);
  });
}

}  // namespace dormel::x11
