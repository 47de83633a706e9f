// Keyboards and pointers beside the usual pair: the server can have several, each with a focus and a cursor of its own,
// and an ordinary grab takes the usual pair alone. While wanted, all others are taken too, for nobody: their keys still
// show as raw events. Main thread only.
#pragma once

#include <xcb/xinput.h>

#include <cstdint>
#include <memory>
#include <set>

#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class SecondaryDeviceGrabs {
 public:
  SecondaryDeviceGrabs(std::shared_ptr<Connection> connection, const ServerFeatures& features);
  SecondaryDeviceGrabs(const SecondaryDeviceGrabs&) = delete;
  SecondaryDeviceGrabs& operator=(const SecondaryDeviceGrabs&) = delete;
  ~SecondaryDeviceGrabs();

  /// Which there are, on its way.
  struct Masters {
    Asked<&xcb_input_xi_get_client_pointer_reply> usual;
    Asked<&xcb_input_xi_query_device_reply> all;
  };
  [[nodiscard]] Masters ask();
  /// Doing it again catches those that came since. One that another program holds is asked for again every 100 ms.
  void take(Masters masters);
  void release();

 private:
  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  xcb_cursor_t blank_;
  std::set<std::uint16_t> taken_;
  CoalescedTimer again_;
};

}  // namespace dormel::x11
