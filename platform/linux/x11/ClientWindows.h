// The windows of all applications, as the window manager lists them and their owners describe them. Every call asks the
// server afresh, in one round trip for all windows. Main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/x11/Connection.h"

namespace dormel::x11 {

/// Who a window belongs to.
struct ClientWindow {
  /// The process's; where it does not say, a negative number that only its own windows share.
  std::int32_t pid = 0;
  std::string instance;  ///< the two halves of its WM_CLASS
  std::string className;
  bool skipsTaskbar = false;
};

/// A window that can be seen now.
struct SeenWindow {
  std::int32_t pid = 0;    ///< as above
  bool isOrdinary = true;  ///< no menu, bubble or the like
  PixelRect area;          ///< with the frame around it, without the shadow that it draws itself
};

class ClientWindows {
 public:
  explicit ClientWindows(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}

  /// In the order in which they came.
  [[nodiscard]] std::vector<ClientWindow> all() const;
  /// The one that has the focus, as the window manager says.
  [[nodiscard]] std::optional<ClientWindow> active() const;
  /// Those on the present workspace, the topmost first, without desktops and docks. Nothing without a window manager
  /// that tells.
  [[nodiscard]] std::optional<std::vector<SeenWindow>> seen() const;

 private:
  [[nodiscard]] std::vector<ClientWindow> describe(const std::vector<xcb_window_t>& windows) const;

  std::shared_ptr<Connection> connection_;
};

}  // namespace dormel::x11
