// Keyboards and pointers beside the usual pair: the server can have several, each with a focus and a cursor of its own,
// and an ordinary grab takes the usual pair alone. While wanted, all others are taken too, for nobody: their keys still
// show as raw events. Main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <set>

#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class SecondaryDeviceGrabs {
 public:
  SecondaryDeviceGrabs(std::shared_ptr<Connection> connection, const ServerFeatures& features);
  SecondaryDeviceGrabs(const SecondaryDeviceGrabs&) = delete;
  SecondaryDeviceGrabs& operator=(const SecondaryDeviceGrabs&) = delete;
  ~SecondaryDeviceGrabs();

  /// Doing it again catches those that came since. One that another program holds is asked for again every 100 ms.
  void take();
  void release();

 private:
  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  xcb_cursor_t blank_;
  std::set<std::uint16_t> taken_;
  CoalescedTimer again_;
};

}  // namespace dormel::x11
