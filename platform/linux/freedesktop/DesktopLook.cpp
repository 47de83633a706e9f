#include "platform/linux/freedesktop/DesktopLook.h"

#include <cstdint>
#include <optional>

#include "platform/linux/freedesktop/BusMessage.h"

namespace dormel::freedesktop {
namespace {

constexpr std::uint64_t LIMIT = 100'000;  // microseconds, for each question
constexpr const char* APPEARANCE = "org.freedesktop.appearance";
constexpr const char* INTERFACE = "org.gnome.desktop.interface";

constexpr BusObject PORTAL{"org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"};

/// A number or a flag of the portal's. Old portals wrap the value once more.
std::optional<std::uint32_t> setting(sd_bus* bus, const char* group, const char* key) {
  const auto answer =
      busAnswer(bus, busCall(bus, PORTAL, "org.freedesktop.portal.Settings", "Read", "ss", group, key), LIMIT);
  sd_bus_message* const replied = answer.get();
  if (replied == nullptr) return {};
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
  const OwnedBus bus = openSessionBus();
  if (!bus) return {};
  DesktopLook look;
  look.highContrast = setting(bus.get(), APPEARANCE, "contrast").value_or(0) == 1;
  look.reducedMotion = setting(bus.get(), APPEARANCE, "reduced-motion").value_or(0) == 1 ||
                       setting(bus.get(), INTERFACE, "enable-animations").value_or(1) == 0;
  return look;
}

}  // namespace dormel::freedesktop
