// GNOME Shell's overview. While it is open, which it is after every login, the shell shows no windows, not even those
// that nobody manages: a lock would stand there unseen, with the keyboard in its hands. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/freedesktop/Bus.h"

namespace dormel::freedesktop {

class ShellOverview {
 public:
  /// `loop` outlives it.
  explicit ShellOverview(EventLoop& loop);
  ShellOverview(const ShellOverview&) = delete;
  ShellOverview& operator=(const ShellOverview&) = delete;
  ~ShellOverview() = default;

  /// On: it is closed, now and as soon as it opens. Returns without waiting for the shell; on other desktops, and
  /// without a session bus, nothing happens.
  void keepClosed(bool on);

 private:
  void close() const;

  EventLoop& loop_;
  std::unique_ptr<Bus> bus_;
  bool isKeptClosed_ = false;
};

}  // namespace dormel::freedesktop
