// The system's announcements that it goes to sleep and that it woke, from logind on the system bus. Main thread.
#pragma once

#include <functional>
#include <memory>

#include "platform/linux/freedesktop/Bus.h"

namespace dormel::freedesktop {

/// Without a system bus nothing is announced, which is said once in one line by `report`, until there is one: it is
/// looked for again after a second, then ever more rarely, once a minute in the end.
class Logind {
 public:
  /// `onSleep` is called with true before sleep and with false after waking. `loop` outlives this.
  Logind(EventLoop& loop, std::function<void(bool)> onSleep, std::function<void(const char*)> report);
  Logind(const Logind&) = delete;
  Logind& operator=(const Logind&) = delete;
  ~Logind() = default;

 private:
  void connect();
  void tryAgain();

  EventLoop& loop_;
  std::function<void(bool)> onSleep_;
  std::function<void(const char*)> report_;
  std::unique_ptr<Bus> bus_;
  Seconds pause_;
  Timer retry_;
};

}  // namespace dormel::freedesktop
