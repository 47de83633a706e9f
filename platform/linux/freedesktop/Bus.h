// A connection to a message bus, on the main loop. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/loop/EventLoop.h"

struct sd_bus;

namespace dormel::freedesktop {

class Bus {
 public:
  enum class Kind { system, session };

  /// Null where there is no such bus. Nothing waits for it: what is sent goes out, and what comes is handed on, from
  /// the loop, which outlives this. `onLost` is called once, in a turn of its own, when the bus is gone; it may destroy
  /// this.
  [[nodiscard]] static std::unique_ptr<Bus> open(Kind kind, EventLoop& loop, Task onLost);
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;
  ~Bus();

  // NOLINTNEXTLINE: every call takes it
  operator sd_bus*() const { return bus_; }

 private:
  Bus(sd_bus* bus, EventLoop& loop, Task onLost);

  sd_bus* bus_;
  EventLoop& loop_;
  std::shared_ptr<Task> onLost_;
};

}  // namespace dormel::freedesktop
