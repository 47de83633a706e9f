#include "platform/linux/freedesktop/Logind.h"

#include <systemd/sd-bus.h>

#include <memory>
#include <utility>

namespace dormel::freedesktop {
namespace {

struct BusDeleter {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};

}  // namespace

struct Logind::Bus {
  std::unique_ptr<sd_bus, BusDeleter> bus;
  std::function<void(bool)> onSleep;

  /// Handles what has come; false when the connection is lost.
  [[nodiscard]] bool process() const {
    for (;;) {
      const int handled = sd_bus_process(bus.get(), nullptr);
      if (handled <= 0) return handled == 0;
    }
  }

  static int prepareForSleep(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    int sleeping = 0;
    if (sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &sleeping) >= 0) {
      static_cast<Bus*>(self)->onSleep(sleeping != 0);
    }
    return 0;
  }
};

Logind::Logind(const WatchReadable& watchReadable, std::function<void(bool)> onSleep,
               const std::function<void(const char*)>& complain)
    : bus_(std::make_unique<Bus>()) {
  bus_->onSleep = std::move(onSleep);
  sd_bus* bus = nullptr;
  const bool open = sd_bus_open_system(&bus) >= 0;
  bus_->bus.reset(bus);
  if (!open || sd_bus_match_signal_async(bus, nullptr, "org.freedesktop.login1", "/org/freedesktop/login1",
                                         "org.freedesktop.login1.Manager", "PrepareForSleep", &Bus::prepareForSleep,
                                         nullptr, bus_.get()) < 0) {
    complain("Dormel: no system bus; sleep and waking will go unnoticed until the next check of the hours");
    bus_->bus.reset();
    return;
  }
  watchReadable(sd_bus_get_fd(bus), [raw = bus_.get()] { return raw->process(); });
  static_cast<void>(bus_->process());  // sends the subscription
}

Logind::~Logind() = default;

}  // namespace dormel::freedesktop
