#include "platform/linux/wayland/WaylandPlatform.h"

#include <chrono>
#include <utility>

namespace dormel::wayland {
namespace {

constexpr std::chrono::milliseconds RESTORE_LIMIT{500};
/// How long a start waits at most until its panels are up, before it goes on with what is not so urgent.
constexpr std::chrono::milliseconds COVER_LIMIT{20};

}  // namespace

WaylandPlatform::WaylandPlatform(std::unique_ptr<Connection> connection, const std::string& lockMark, EventLoop& loop,
                                 CanvasFactory& canvases, const Clock& clock)
    : connection_(std::move(connection)),
      outputs_(*connection_, loop),
      keyboard_(*connection_, loop),
      pointer_(*connection_),
      environment_(
          std::make_shared<PanelContext>(*connection_, loop, outputs_, keyboard_, pointer_, canvases, clock, lockMark)),
      accessibility_(*connection_),
      taps_({[this] { return keyboard_.isHeld(); },
             [this](bool some) {
               environment_->focus.want(some);
               environment_->panelsChanged();
             }}),
      panels_(environment_) {
  keyboard_.setPointer(&pointer_);
  keyboard_.setOnKey([this](const KeyEvent& event) {
    if (!taps_.deliver(event)) environment_->deliver(event);
  });
  keyboard_.setOnFocus([this] {
    environment_->keyboardChanged();
    taps_.heldChanged();
  });
  keyboard_.setOnSeats([this] { environment_->inhibitors.seatsChanged(); });
  outputs_.setOnOutputs([this] { environment_->outputsChanged(); });
  connection_->setOnArrival(
      [this](const Connection::Arrival& arrival) {
        if (arrival.interface == "wl_output") {
          outputs_.arrived(arrival);
        } else {
          keyboard_.arrived(arrival);
        }
      },
      [this](std::uint32_t number) {
        outputs_.departed(number);
        keyboard_.departed(number);
      });
  connection_->roundtrip();  // what outputs and seats there are
  connection_->roundtrip();  // what they are like
  outputs_.announce();
  connection_->startPumping(loop, [this] {
    if (const Task onLost = onLost_) onLost();
  });
}

WaylandPlatform::~WaylandPlatform() {
  connection_->setOnArrival([](const auto&) {}, [](auto) {});
}

void WaylandPlatform::setLockdown(bool on) {
  pointer_.setKept(on);
  environment_->lock.stages().setLockdown(on);
  environment_->panelsChanged();
  if (on) {
    // A panel has the keyboard only once it is shown, and it is shown once the compositor has told its size.
    connection_->settle(COVER_LIMIT);
  } else {
    connection_->flush();
  }
}

void WaylandPlatform::restoreAtExit(bool /*comesBack*/) { environment_->lock.restoreAtExit(RESTORE_LIMIT); }

}  // namespace dormel::wayland
