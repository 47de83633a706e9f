#include "platform/linux/x11/Lockdown.h"

#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

Lockdown::Lockdown(std::shared_ptr<Connection> connection, const ServerFeatures& features,
                   std::shared_ptr<AccessXSuspension> care)
    : connection_(std::move(connection)),
      keys_(connection_, features),
      care_(std::move(care)),
      pointer_(connection_, InputGrab::Device::pointer),
      secondaryDeviceGrabs_(connection_, features),
      features_(features),
      marker_(connection_->newId()),
      client_(connection_->newId()),
      selection_(connection_->atom("_DORMEL_LOCKDOWN")),
      check_(connection_->loop(), [this] {
        if (isOn_) look();
      }) {
  xcb_create_window(*connection_, XCB_COPY_FROM_PARENT, marker_, connection_->root(), -2, -2, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_create_pixmap(*connection_, 1, client_, connection_->root(), 1, 1);
  connection_->flush();
  // The selection is owned while a lockdown is on, and dies with its owner.
  Asked<&xcb_get_selection_owner_reply> asked(*connection_, xcb_get_selection_owner(*connection_, selection_));
  auto actions = keys_.askLeft();
  auto locked = care_->askLeft();
  const auto owner = asked.take();
  if (!owner || owner->owner != XCB_NONE) return;
  keys_.restore(std::move(actions));
  care_->repair(std::move(locked));
}

Lockdown::~Lockdown() {
  set(false);
  xcb_destroy_window(*connection_, marker_);
  xcb_free_pixmap(*connection_, client_);
}

void Lockdown::set(bool on) {
  if (on) {
    if (!std::exchange(isOn_, true)) {
      xcb_set_selection_owner(*connection_, marker_, selection_, XCB_CURRENT_TIME);
      subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
      selectHierarchy(*connection_, features_);  // keyboards that are plugged in bring a keymap of their own
    }
    pointer_.want(true);
    look();
    connection_->sync();  // from here on it is so for every other program, too
    return;
  }
  if (!std::exchange(isOn_, false)) return;
  subscription_.reset();
  pointer_.want(false);
  secondaryDeviceGrabs_.release();
  keys_.restore();
  careHold_.reset();
  xcb_set_selection_owner(*connection_, XCB_NONE, selection_, XCB_CURRENT_TIME);
  connection_->flush();
}

void Lockdown::look() {
  // All questions first: the screens are covered by now, and the keyboard is taken only after this.
  auto masters = secondaryDeviceGrabs_.ask();
  const KeyDevices devices = keyDevices(*connection_, features_);
  auto keymaps = keys_.ask(devices);
  if (!careHold_) careHold_ = care_->hold(devices);
  if (keys_.disarm(std::move(keymaps))) check_.ask();
  secondaryDeviceGrabs_.take(std::move(masters));
}

void Lockdown::handle(const xcb_generic_event_t& event) {
  // A change comes as a burst, and our own is among them: look once, after it.
  if (keys_.concerns(event)) check_.ask();
}

void Lockdown::bequeath(const std::string& display, std::uint32_t client, xcb_window_t focus) {
  const auto connection = Connection::open(display);
  if (!connection) return;
  // First, so that nothing undoes what follows. The server throws away what it has not carried out yet.
  xcb_kill_client(*connection, client);
  const ServerFeatures features = ServerFeatures::query(*connection);
  ServerHotkeys(connection, features).restore();
  XkbLockState(connection, features).restore();
  const auto present = owned(xcb_get_input_focus_reply(*connection, xcb_get_input_focus(*connection), nullptr));
  const bool isFree = present && (present->focus == XCB_NONE || present->focus == XCB_INPUT_FOCUS_POINTER_ROOT);
  if (focus != XCB_NONE && isFree) {
    xcb_set_input_focus(*connection, XCB_INPUT_FOCUS_POINTER_ROOT, focus, XCB_CURRENT_TIME);
  }
  connection->sync();
}

}  // namespace dormel::x11
