#include "platform/linux/freedesktop/ShellOverview.h"

#include <systemd/sd-bus.h>

#include <string_view>
#include <utility>

namespace dormel::freedesktop {
namespace {

constexpr const char* SHELL = "org.gnome.Shell";
constexpr const char* SHELL_OBJECT = "/org/gnome/Shell";
constexpr const char* PROPERTIES = "org.freedesktop.DBus.Properties";
constexpr const char* IS_OPEN = "OverviewActive";

struct BusDeleter {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};

struct MessageDeleter {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

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

struct ShellOverview::Bus {
  std::unique_ptr<sd_bus, BusDeleter> connection;
  bool isKeptClosed = false;
  bool isLost = false;

  void close() const {
    sd_bus_message* made = nullptr;
    const int status = sd_bus_message_new_method_call(connection.get(), &made, SHELL, SHELL_OBJECT, PROPERTIES, "Set");
    const std::unique_ptr<sd_bus_message, MessageDeleter> message(made);
    if (status < 0 || sd_bus_message_append(made, "ssv", SHELL, IS_OPEN, "b", 0) < 0) return;
    sd_bus_message_set_auto_start(made, 0);  // nobody wants that shell on another desktop
    sd_bus_message_set_expect_reply(made, 0);
    sd_bus_send(connection.get(), made, nullptr);
  }

  /// Handles what has come and sends what there is; false when the connection is lost.
  [[nodiscard]] bool process() {
    for (;;) {
      const int handled = sd_bus_process(connection.get(), nullptr);
      if (handled > 0) continue;
      isLost = handled < 0;
      return !isLost;
    }
  }

  static int changed(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const auto& bus = *static_cast<Bus*>(self);
    if (bus.isKeptClosed && saysOpen(message)) bus.close();
    return 0;
  }
};

ShellOverview::ShellOverview(WatchReadable watchReadable) : watchReadable_(std::move(watchReadable)) {}

ShellOverview::~ShellOverview() = default;

void ShellOverview::keepClosed(bool on) {
  if (on && (!bus_ || bus_->isLost)) {
    bus_ = std::make_shared<Bus>();
    sd_bus* opened = nullptr;
    bus_->isLost = sd_bus_open_user(&opened) < 0;
    bus_->connection.reset(opened);
    if (bus_->isLost) return;
    sd_bus_match_signal_async(opened, nullptr, SHELL, SHELL_OBJECT, PROPERTIES, "PropertiesChanged", &Bus::changed,
                              nullptr, bus_.get());
    watchReadable_(sd_bus_get_fd(opened), [bus = bus_] { return bus->process(); });
  }
  if (!bus_ || bus_->isLost) return;
  bus_->isKeptClosed = on;
  if (on) bus_->close();
  static_cast<void>(bus_->process());
}

}  // namespace dormel::freedesktop
