#include "platform/linux/speech/ScreenReader.h"

#include <utility>

#include "platform/linux/freedesktop/BusMessage.h"

namespace dormel::speech {
namespace {

constexpr freedesktop::BusObject OBJECT{"org.a11y.Bus", "/org/a11y/bus"};
constexpr const char* STATUS = "org.a11y.Status";
constexpr const char* IS_ON = "ScreenReaderEnabled";

}  // namespace

ScreenReader::ScreenReader(EventLoop& loop, std::function<void(bool isOn)> handler) : handler_(std::move(handler)) {
  bus_ = freedesktop::Bus::open(freedesktop::Bus::Kind::session, loop, [this] { bus_.reset(); });
  if (!bus_) return;
  const auto changed = [](sd_bus_message*, void* self, sd_bus_error*) {
    static_cast<ScreenReader*>(self)->ask();
    return 0;
  };
  sd_bus_match_signal_async(*bus_, nullptr, OBJECT.service, OBJECT.path, freedesktop::BUS_PROPERTIES,
                            "PropertiesChanged", changed, nullptr, this);
  ask();
}

void ScreenReader::ask() {
  const auto answered = [](sd_bus_message* reply, void* self, sd_bus_error*) {
    int isOn = 0;
    if (sd_bus_message_is_method_error(reply, nullptr) == 0 && sd_bus_message_read(reply, "v", "b", &isOn) >= 0) {
      static_cast<ScreenReader*>(self)->handler_(isOn != 0);
    }
    return 0;
  };
  const auto call = freedesktop::busCall(*bus_, OBJECT, freedesktop::BUS_PROPERTIES, "Get", "ss", STATUS, IS_ON);
  if (call) sd_bus_call_async(*bus_, nullptr, call.get(), answered, this, 0);
}

}  // namespace dormel::speech
