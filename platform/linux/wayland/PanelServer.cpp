#include "platform/linux/wayland/PanelServer.h"

#include <utility>

#include "platform/linux/display/DisplayLink.h"

namespace dormel::wayland {
namespace {

constexpr int FRAME_MILLISECONDS = 16;

class MonitorRegistration : public Registration {
 public:
  explicit MonitorRegistration(std::shared_ptr<KeyMonitor> monitor) : monitor_(std::move(monitor)) {}

 private:
  std::shared_ptr<KeyMonitor> monitor_;
};

}  // namespace

PanelServer::PanelServer(std::shared_ptr<PanelContext> environment)
    : env_(std::move(environment)), animator_(env_->loop, env_->clock, [] { return FRAME_MILLISECONDS; }) {}

std::shared_ptr<Window> PanelServer::makeWindow(const WindowStyle& style, const Rect& contentRect) {
  return std::make_shared<Panel>(env_, style, contentRect);
}

void PanelServer::animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                               TimingCurve curve, Task completion) {
  std::vector<std::shared_ptr<FadingWindow>> fading;
  for (const auto& window : windows) {
    if (auto one = std::dynamic_pointer_cast<FadingWindow>(window)) fading.push_back(std::move(one));
  }
  animator_.animate(fading, alpha, duration, curve, std::move(completion));
}

std::unique_ptr<Registration> PanelServer::addLocalKeyDownMonitor(std::function<bool(const KeyEvent&)> monitor) {
  auto shared = std::make_shared<KeyMonitor>(std::move(monitor));
  env_->keyMonitors.emplace_back(shared);
  return std::make_unique<MonitorRegistration>(std::move(shared));
}

std::unique_ptr<Registration> PanelServer::makeDisplayLink(Task onFrame) {
  return std::make_unique<DisplayLink>(env_->loop, std::move(onFrame));
}

}  // namespace dormel::wayland
