// Windows that the desktop's window manager looks after: an ordinary one of ours, brought to the front, and those of
// other applications, put out of sight and brought back. Main thread only.
#pragma once

#include <memory>
#include <vector>

#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

class ManagedWindows {
 public:
  /// Without a connection nothing can be done.
  explicit ManagedWindows(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}

  /// Gives `window` the focus as a pager would: the user asked for it, so no window manager holds it back.
  void activate(xcb_window_t window);

  /// Whether there is a window manager that lists its windows.
  [[nodiscard]] bool canHideOthers();
  /// Minimises every ordinary window but this process's.
  void hideOthers();
  /// Brings back what `hideOthers` put away.
  void showOthers();

 private:
  [[nodiscard]] std::vector<std::uint32_t> clients();
  void send(xcb_window_t window, xcb_atom_t type, const std::vector<std::uint32_t>& data);

  std::shared_ptr<Connection> connection_;
  std::vector<xcb_window_t> hidden_;
};

}  // namespace dormel::x11
