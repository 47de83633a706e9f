// What is asked over a message bus, and what is answered; each given back by itself. Thread: whose the bus is.
#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <memory>

namespace dormel::freedesktop {

struct BusDeleter {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using OwnedBus = std::unique_ptr<sd_bus, BusDeleter>;
using BusMessage = std::unique_ptr<sd_bus_message, BusDeleter>;

/// A connection to the session's bus of one's own, on no loop; null where there is none.
[[nodiscard]] inline OwnedBus openSessionBus() {
  sd_bus* bus = nullptr;
  return OwnedBus(sd_bus_open_user(&bus) < 0 ? nullptr : bus);
}

struct BusObject {
  const char* service;
  const char* path;
};

/// A call that was not sent yet; null where it cannot be made. Nobody is started to answer it: on another desktop
/// nobody wants that.
template <typename... Arguments>
[[nodiscard]] BusMessage busCall(sd_bus* bus, const BusObject& object, const char* interface, const char* method,
                                 const char* types, Arguments... arguments) {
  sd_bus_message* made = nullptr;
  if (bus == nullptr ||
      sd_bus_message_new_method_call(bus, &made, object.service, object.path, interface, method) < 0) {
    return {};
  }
  BusMessage call(made);
  sd_bus_message_set_auto_start(made, 0);
  return sd_bus_message_append(made, types, arguments...) < 0 ? nullptr : std::move(call);
}

/// Sends it, and waits so long (0: as the bus has it) for the answer; null without one.
[[nodiscard]] inline BusMessage busAnswer(sd_bus* bus, const BusMessage& call, std::uint64_t microseconds = 0) {
  sd_bus_message* answer = nullptr;
  return BusMessage(call && sd_bus_call(bus, call.get(), microseconds, nullptr, &answer) >= 0 ? answer : nullptr);
}

inline constexpr const char* BUS_PROPERTIES = "org.freedesktop.DBus.Properties";

}  // namespace dormel::freedesktop
