#include "platform/linux/qt/QtMainWindows.h"

#include "platform/linux/qt/DesktopWindow.h"

namespace dormel {
namespace {

class QtMainWindow : public MainWindow {
 public:
  explicit QtMainWindow(WindowHandle window) : window_(std::move(window)) {}

  void bringToFront() override {
    if (window_) window_->bringToFront();
  }
  void close() override { window_.reset(); }

 private:
  WindowHandle window_;
};

}  // namespace

std::unique_ptr<MainWindow> QtMainWindows::make(const MainWindowStyle& style, std::shared_ptr<View> content,
                                                Task onClose) {
  WindowHandle window(new DesktopWindow(
      group_, content,
      Qt::Window | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint));
  window->setTitle(QString::fromStdString(style.title));
  window->fixSize(style.contentSize);
  window->wearFrame(true);
  window->centre(style.isMain ? nullptr : group_->mainWindow());
  window->setOnCloseRequest(std::move(onClose));
  if (style.isMain) group_->setMainWindow(window.get());
  return std::make_unique<QtMainWindow>(std::move(window));
}

}  // namespace dormel
