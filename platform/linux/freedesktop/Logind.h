// The system's announcements that it goes to sleep and that it woke, from logind on the system bus. Main thread.
#pragma once

#include <functional>
#include <memory>

namespace dormel::freedesktop {

/// Without a system bus or logind nothing is announced, which is said once in one line by `complain`.
class Logind {
 public:
  using WatchReadable = std::function<void(int fd, std::function<bool()> action)>;

  /// `onSleep` is called with true before sleep and with false after waking.
  Logind(const WatchReadable& watchReadable, std::function<void(bool)> onSleep,
         const std::function<void(const char*)>& complain);
  Logind(const Logind&) = delete;
  Logind& operator=(const Logind&) = delete;
  ~Logind();

 private:
  struct Bus;
  std::unique_ptr<Bus> bus_;
};

}  // namespace dormel::freedesktop
