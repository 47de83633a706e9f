// The server's devices that have keys, and the news of those that come and go. Main thread only.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

/// The devices that have keys, keyboards or not. Others must never be asked for keyboard events: a server does not
/// forget who did, and when it is to end it goes round in circles over that.
using KeyDevices = std::vector<std::uint16_t>;
[[nodiscard]] KeyDevices keyDevices(Connection& connection, const ServerFeatures& features);

/// Asks for the events that tell of keyboards which come or go.
void selectHierarchy(Connection& connection, const ServerFeatures& features);
[[nodiscard]] bool isHierarchyChange(const xcb_generic_event_t& event, const ServerFeatures& features);

}  // namespace dormel::x11
