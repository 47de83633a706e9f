// The windows on screen by the window manager's word. Main thread only.
#pragma once

#include <memory>

#include "platform/WindowList.h"
#include "platform/linux/x11/ClientWindows.h"
#include "platform/linux/x11/ScreensX11.h"

namespace dormel::x11 {

class WindowListX11 final : public WindowList {
 public:
  /// Without a connection there is no answer.
  WindowListX11(const std::shared_ptr<Connection>& connection, std::shared_ptr<ScreensX11> screens)
      : screens_(std::move(screens)), clients_(connection ? std::make_unique<ClientWindows>(connection) : nullptr) {}

  [[nodiscard]] std::optional<std::vector<ListedWindow>> onScreen() const override;

 private:
  std::shared_ptr<ScreensX11> screens_;
  std::unique_ptr<ClientWindows> clients_;
};

}  // namespace dormel::x11
