#include "platform/linux/x11/AccessXSuspension.h"

#include <utility>

namespace dormel::x11 {

std::shared_ptr<AccessXSuspension> AccessXSuspension::create(const std::shared_ptr<Connection>& connection,
                                                             const ServerFeatures& features) {
  return std::shared_ptr<AccessXSuspension>(new AccessXSuspension(connection, features));
}

AccessXSuspension::AccessXSuspension(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)),
      features_(features),
      aids_(connection_, features),
      locked_(connection_, features),
      check_(connection_->loop(), [this] {
        if (isHeld_) aids_.suspend(aids_.ask(keyDevices(*connection_, features_)));
      }) {}

AccessXSuspension::Hold AccessXSuspension::hold() {
  if (Hold present = held_.lock()) return present;
  selectHierarchy(*connection_, features_);
  return hold(keyDevices(*connection_, features_));
}

AccessXSuspension::Hold AccessXSuspension::hold(const KeyDevices& devices) {
  if (Hold present = held_.lock()) return present;
  begin(devices);
  Hold first(this, [self = shared_from_this()](const void*) { self->end(); });
  held_ = first;
  return first;
}

void AccessXSuspension::begin(const KeyDevices& devices) {
  isHeld_ = true;  // before anything changes in the server
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
  auto states = locked_.ask(devices);
  auto controls = aids_.ask(devices);
  locked_.remember(std::move(states));
  aids_.suspend(std::move(controls));
}

void AccessXSuspension::end() {
  subscription_.reset();
  check_.forget();
  aids_.resume();
  locked_.restore();
  isHeld_ = false;
  held_.reset();  // what it watches keeps the release, and so this object, until nobody watches
}

void AccessXSuspension::handle(const xcb_generic_event_t& event) {
  // A change comes as a burst, and our own is among them: look once, after it.
  if (aids_.concerns(event) || isHierarchyChange(event, features_)) check_.ask();
}

}  // namespace dormel::x11
