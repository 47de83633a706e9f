// GNOME Shell's overview. While it is open, which it is after every login, the shell shows no windows, not even those
// that nobody manages: a lock would stand there unseen, with the keyboard in its hands. Main thread only.
#pragma once

#include <functional>
#include <memory>

namespace dormel::freedesktop {

class ShellOverview {
 public:
  using WatchReadable = std::function<void(int fd, std::function<bool()> action)>;

  explicit ShellOverview(WatchReadable watchReadable);
  ShellOverview(const ShellOverview&) = delete;
  ShellOverview& operator=(const ShellOverview&) = delete;
  ~ShellOverview();

  /// On: it is closed, now and as soon as it opens. Returns without waiting for the shell; on other desktops, and
  /// without a session bus, nothing happens.
  void keepClosed(bool on);

 private:
  struct Bus;

  WatchReadable watchReadable_;
  std::shared_ptr<Bus> bus_;
};

}  // namespace dormel::freedesktop
