#include "platform/linux/speech/ScreenReader.h"

#include <systemd/sd-bus.h>

#include <utility>

namespace dormel::speech {
namespace {

constexpr const char* SERVICE = "org.a11y.Bus";
constexpr const char* OBJECT = "/org/a11y/bus";
constexpr const char* STATUS = "org.a11y.Status";
constexpr const char* IS_ON = "ScreenReaderEnabled";
constexpr const char* PROPERTIES = "org.freedesktop.DBus.Properties";

struct MessageDeleter {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

}  // namespace

ScreenReader::ScreenReader(EventLoop& loop, std::function<void(bool isOn)> handler) : handler_(std::move(handler)) {
  bus_ = freedesktop::Bus::open(freedesktop::Bus::Kind::session, loop, [this] { bus_.reset(); });
  if (!bus_) return;
  const auto changed = [](sd_bus_message*, void* self, sd_bus_error*) {
    static_cast<ScreenReader*>(self)->ask();
    return 0;
  };
  sd_bus_match_signal_async(*bus_, nullptr, SERVICE, OBJECT, PROPERTIES, "PropertiesChanged", changed, nullptr, this);
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
  sd_bus_message* made = nullptr;
  const int status = sd_bus_message_new_method_call(*bus_, &made, SERVICE, OBJECT, PROPERTIES, "Get");
  const std::unique_ptr<sd_bus_message, MessageDeleter> message(made);
  if (status < 0 || sd_bus_message_append(made, "ss", STATUS, IS_ON) < 0) return;
  sd_bus_message_set_auto_start(made, 0);
  sd_bus_call_async(*bus_, nullptr, made, answered, this, 0);
}

}  // namespace dormel::speech
