// Main windows on the desktop's own Qt platform. Main thread only.
#pragma once

#include <memory>
#include <utility>

#include "platform/MainWindow.h"
#include "platform/linux/qt/WindowGroup.h"

namespace dormel {

class QtMainWindows : public MainWindows {
 public:
  explicit QtMainWindows(std::shared_ptr<WindowGroup> group) : group_(std::move(group)) {}

  [[nodiscard]] std::unique_ptr<MainWindow> make(const MainWindowStyle& style, std::shared_ptr<View> content,
                                                 Task onClose) override;

 private:
  std::shared_ptr<WindowGroup> group_;
};

}  // namespace dormel
