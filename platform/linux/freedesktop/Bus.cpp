#include "platform/linux/freedesktop/Bus.h"

#include <systemd/sd-bus.h>

#include <utility>

namespace dormel::freedesktop {
namespace {

/// What the library itself says when the connection ends.
constexpr const char* DISCONNECTED =
    "type='signal',sender='org.freedesktop.DBus.Local',path='/org/freedesktop/DBus/Local',"
    "interface='org.freedesktop.DBus.Local',member='Disconnected'";

}  // namespace

std::unique_ptr<Bus> Bus::open(Kind kind, EventLoop& loop, Task onLost) {
  sd_bus* opened = nullptr;
  if ((kind == Kind::system ? sd_bus_open_system(&opened) : sd_bus_open_user(&opened)) < 0) return nullptr;
  std::unique_ptr<Bus> bus(new Bus(opened, loop, std::move(onLost)));
  const auto lost = [](sd_bus_message*, void* self, sd_bus_error*) {
    const auto& ended = *static_cast<Bus*>(self);
    ended.loop_.async([weak = std::weak_ptr(ended.onLost_)] {
      const auto called = weak.lock();
      if (called) (*called)();
    });
    return 0;
  };
  sd_bus_set_exit_on_disconnect(opened, 0);
  if (sd_bus_add_match(opened, nullptr, DISCONNECTED, lost, bus.get()) < 0 ||
      sd_bus_attach_event(opened, loop.handle(), SD_EVENT_PRIORITY_NORMAL) < 0) {
    return nullptr;
  }
  return bus;
}

Bus::Bus(sd_bus* bus, EventLoop& loop, Task onLost)
    : bus_(bus), loop_(loop), onLost_(std::make_shared<Task>(std::move(onLost))) {}

Bus::~Bus() {
  sd_bus_detach_event(bus_);
  sd_bus_close_unref(bus_);
}

}  // namespace dormel::freedesktop
