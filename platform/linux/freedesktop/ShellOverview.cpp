#include "platform/linux/freedesktop/ShellOverview.h"

#include <string_view>

#include "platform/linux/freedesktop/BusMessage.h"

namespace dormel::freedesktop {
namespace {

constexpr const char* SHELL = "org.gnome.Shell";
constexpr BusObject SHELL_OBJECT{SHELL, "/org/gnome/Shell"};
constexpr const char* IS_OPEN = "OverviewActive";

/// Whether a PropertiesChanged says that the overview is open now.
bool saysOpen(sd_bus_message* message) {
  if (sd_bus_message_skip(message, "s") < 0 || sd_bus_message_enter_container(message, 'a', "{sv}") < 0) return false;
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    const char* name = nullptr;
    int isOpen = 0;
    if (sd_bus_message_read_basic(message, 's', &name) < 0) return false;
    if (std::string_view(name) == IS_OPEN) return sd_bus_message_read(message, "v", "b", &isOpen) >= 0 && isOpen != 0;
    if (sd_bus_message_skip(message, "v") < 0 || sd_bus_message_exit_container(message) < 0) return false;
  }
  return false;
}

}  // namespace

ShellOverview::ShellOverview(EventLoop& loop) : loop_(loop) {}

void ShellOverview::keepClosed(bool on) {
  isKeptClosed_ = on;
  if (!on) return;
  if (!bus_) {
    bus_ = Bus::open(Bus::Kind::session, loop_, [this] { bus_.reset(); });
    if (!bus_) return;
    const auto changed = [](sd_bus_message* message, void* self, sd_bus_error*) {
      const auto& overview = *static_cast<ShellOverview*>(self);
      if (overview.isKeptClosed_ && saysOpen(message)) overview.close();
      return 0;
    };
    sd_bus_match_signal_async(*bus_, nullptr, SHELL, SHELL_OBJECT.path, BUS_PROPERTIES, "PropertiesChanged", changed,
                              nullptr, this);
  }
  close();
}

void ShellOverview::close() const {
  const BusMessage call = busCall(*bus_, SHELL_OBJECT, BUS_PROPERTIES, "Set", "ssv", SHELL, IS_OPEN, "b", 0);
  if (!call) return;
  sd_bus_message_set_expect_reply(call.get(), 0);
  sd_bus_send(*bus_, call.get(), nullptr);
}

}  // namespace dormel::freedesktop
