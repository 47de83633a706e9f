#include "platform/linux/qt/QtAlerts.h"

#include "platform/Platform.h"
#include "platform/RunLoop.h"
#include "platform/linux/qt/AlertView.h"
#include "platform/linux/qt/DesktopWindow.h"

namespace dormel {
namespace {

using Answer = std::function<void(int)>;

class QtAlert : public ShownAlert {
 public:
  QtAlert(std::shared_ptr<WindowGroup> group, const Alert& alert, Answer onAnswer)
      : group_(std::move(group)),
        onAnswer_(std::make_shared<Answer>(std::move(onAnswer))),
        view_(std::make_shared<AlertView>(alert, [this](std::size_t button) { answered(button); })),
        window_(new DesktopWindow(group_, view_, Qt::Dialog | Qt::WindowCloseButtonHint)) {
    group_->countAlert(1);
    if (!window_->hasContent()) {
      view_->answer(alert.buttons.size() - 1);
      return;
    }
    window_->setTitle(QString::fromStdString(alert.message));
    window_->fixSize();
    window_->setModality(Qt::ApplicationModal);
    QWindow* over = group_->mainWindow();
    if (over != nullptr && over->isVisible()) window_->setTransientParent(over);
    window_->centre(window_->transientParent());
    window_->setOnCloseRequest([this] {
      if (const auto button = view_->cancelButton()) view_->answer(*button);
    });
    window_->bringToFront();
  }
  QtAlert(const QtAlert&) = delete;
  QtAlert& operator=(const QtAlert&) = delete;
  ~QtAlert() override { close(); }

 private:
  void close() {
    if (!window_) return;
    group_->countAlert(-1);
    window_.reset();
  }

  void answered(std::size_t button) {
    close();
    platform().runLoop.async([weak = std::weak_ptr(onAnswer_), button] {
      const std::shared_ptr<Answer> answer = weak.lock();
      if (answer) (*answer)(static_cast<int>(button));
    });
  }

  std::shared_ptr<WindowGroup> group_;
  std::shared_ptr<Answer> onAnswer_;  // goes with this object: then nobody is told any more
  std::shared_ptr<AlertView> view_;
  WindowHandle window_;
};

}  // namespace

std::unique_ptr<ShownAlert> QtAlerts::show(const Alert& alert, std::function<void(int)> onAnswer) {
  return std::make_unique<QtAlert>(group_, alert, std::move(onAnswer));
}

}  // namespace dormel
