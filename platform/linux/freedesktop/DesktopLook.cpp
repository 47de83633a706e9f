#include "platform/linux/freedesktop/DesktopLook.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace dormel::freedesktop {
namespace {

constexpr std::uint64_t LIMIT = 100'000;  // microseconds, for each question
constexpr const char* APPEARANCE = "org.freedesktop.appearance";
constexpr const char* INTERFACE = "org.gnome.desktop.interface";

struct Deleter {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, Deleter>;

/// A number or a flag of the portal's. Old portals wrap the value once more.
std::optional<std::uint32_t> setting(sd_bus* bus, const char* group, const char* key) {
  sd_bus_message* made = nullptr;
  const int status =
      sd_bus_message_new_method_call(bus, &made, "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                     "org.freedesktop.portal.Settings", "Read");
  const Message question(made);
  if (status < 0 || sd_bus_message_append(made, "ss", group, key) < 0) return {};
  sd_bus_message_set_auto_start(made, 0);
  sd_bus_message* replied = nullptr;
  if (sd_bus_call(bus, made, LIMIT, nullptr, &replied) < 0) return {};
  const Message answer(replied);
  char kind = 0;
  const char* contents = nullptr;
  while (sd_bus_message_peek_type(replied, &kind, &contents) > 0 && kind == 'v') {
    if (sd_bus_message_enter_container(replied, 'v', contents) < 0) return {};
  }
  std::uint32_t number = 0;
  int flag = 0;
  if (kind == 'u' && sd_bus_message_read_basic(replied, 'u', &number) >= 0) return number;
  if (kind == 'b' && sd_bus_message_read_basic(replied, 'b', &flag) >= 0) return flag != 0 ? 1 : 0;
  return {};
}

}  // namespace

DesktopLook desktopLook() {
  sd_bus* opened = nullptr;
  if (sd_bus_open_user(&opened) < 0) return {};
  const std::unique_ptr<sd_bus, Deleter> bus(opened);
  DesktopLook look;
  look.highContrast = setting(opened, APPEARANCE, "contrast").value_or(0) == 1;
  look.reducedMotion = setting(opened, APPEARANCE, "reduced-motion").value_or(0) == 1 ||
                       setting(opened, INTERFACE, "enable-animations").value_or(1) == 0;
  return look;
}

}  // namespace dormel::freedesktop
