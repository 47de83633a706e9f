#include "platform/linux/freedesktop/Logind.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <utility>

namespace dormel::freedesktop {
namespace {

constexpr Seconds FIRST_PAUSE = 1;
constexpr Seconds LONGEST_PAUSE = 60;

}  // namespace

Logind::Logind(EventLoop& loop, std::function<void(bool)> onSleep, std::function<void(const char*)> report)
    : loop_(loop), onSleep_(std::move(onSleep)), report_(std::move(report)), pause_(FIRST_PAUSE) {
  connect();
}

void Logind::connect() {
  const auto announced = [](sd_bus_message* message, void* self, sd_bus_error*) {
    int sleeping = 0;
    if (sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &sleeping) >= 0) {
      static_cast<Logind*>(self)->onSleep_(sleeping != 0);
    }
    return 0;
  };
  const auto connected = [](sd_bus_message* reply, void* self, sd_bus_error*) {
    if (sd_bus_message_is_method_error(reply, nullptr) == 0) static_cast<Logind*>(self)->pause_ = FIRST_PAUSE;
    return 0;
  };
  bus_ = Bus::open(Bus::Kind::system, loop_, [this] { tryAgain(); });
  if (!bus_ ||
      sd_bus_match_signal_async(*bus_, nullptr, "org.freedesktop.login1", "/org/freedesktop/login1",
                                "org.freedesktop.login1.Manager", "PrepareForSleep", announced, connected, this) < 0) {
    tryAgain();
  }
}

void Logind::tryAgain() {
  bus_.reset();
  if (const auto report = std::exchange(report_, {})) {
    report("Dormel: no system bus; sleep and waking will go unnoticed until the next check of the hours");
  }
  retry_ = Timer::once(loop_, pause_, [this] { connect(); });
  pause_ = std::min(2 * pause_, LONGEST_PAUSE);
}

}  // namespace dormel::freedesktop
