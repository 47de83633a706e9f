#include "platform/linux/wayland/PanelServer.h"

#include <utility>

#include "platform/linux/display/DisplayLink.h"

namespace dormel::wayland {
namespace {

constexpr int FRAME_MILLISECONDS = 16;

}  // namespace

PanelServer::PanelServer(std::shared_ptr<PanelContext> environment)
    : env_(std::move(environment)), animator_(env_->loop, env_->clock, [] { return FRAME_MILLISECONDS; }) {}

std::shared_ptr<Window> PanelServer::makeWindow(const WindowStyle& style, const Rect& contentRect) {
  return std::make_shared<Panel>(env_, style, contentRect);
}

void PanelServer::animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                               TimingCurve curve, Task completion) {
  animator_.animate(windows, alpha, duration, curve, std::move(completion));
}

std::unique_ptr<Registration> PanelServer::addLocalKeyDownMonitor(std::function<bool(const KeyEvent&)> monitor) {
  return env_->keyMonitors.add(std::move(monitor));
}

std::unique_ptr<Registration> PanelServer::makeDisplayLink(Task onFrame) {
  return std::make_unique<DisplayLink>(env_->loop, std::move(onFrame));
}

}  // namespace dormel::wayland
