#include "platform/linux/x11/Lockdown.h"

#include <xcb/xinput.h>

#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

Lockdown::Lockdown(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)),
      keys_(connection_, features),
      aids_(connection_, features),
      pointer_(connection_),
      otherHands_(connection_, features),
      features_(features),
      marker_(connection_->newId()),
      selection_(connection_->atom("_DORMEL_LOCKDOWN")),
      check_(connection_->loop(), [this] {
        if (isOn_) look();
      }) {
  xcb_create_window(*connection_, XCB_COPY_FROM_PARENT, marker_, connection_->root(), -2, -2, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  // The selection is owned while a lockdown is on, and dies with its owner.
  const auto owner =
      owned(xcb_get_selection_owner_reply(*connection_, xcb_get_selection_owner(*connection_, selection_), nullptr));
  if (owner && owner->owner == XCB_NONE) keys_.restore();
}

Lockdown::~Lockdown() {
  set(false);
  xcb_destroy_window(*connection_, marker_);
}

void Lockdown::set(bool on) {
  if (on) {
    if (!std::exchange(isOn_, true)) {
      xcb_set_selection_owner(*connection_, marker_, selection_, XCB_CURRENT_TIME);
      subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
      if (features_.xinput22) {  // keyboards that are plugged in bring a keymap of their own
        struct {
          xcb_input_event_mask_t head;
          std::uint32_t bits;
        } mask{{XCB_INPUT_DEVICE_ALL, 1}, XCB_INPUT_XI_EVENT_MASK_HIERARCHY};
        xcb_input_xi_select_events(*connection_, connection_->root(), 1, &mask.head);
      }
    }
    pointer_.want(true);
    look();
    return;
  }
  if (!std::exchange(isOn_, false)) return;
  subscription_.reset();
  pointer_.want(false);
  otherHands_.release();
  aids_.resume();
  keys_.restore();
  xcb_set_selection_owner(*connection_, XCB_NONE, selection_, XCB_CURRENT_TIME);
  connection_->flush();
}

void Lockdown::look() {
  keys_.disarm();
  aids_.suspend();
  otherHands_.take();
}

void Lockdown::handle(const xcb_generic_event_t& event) {
  // A change comes as a burst, and our own is among them: look once, after it.
  if (keys_.concerns(event) || aids_.concerns(event)) check_.ask();
}

void Lockdown::giveBackKeys(const std::string& display) {
  const auto connection = Connection::open(display);
  if (!connection) return;
  KeyActions(connection, ServerFeatures::query(*connection)).restore();
}

}  // namespace dormel::x11
