#include "platform/linux/x11/PanelServer.h"

#include <utility>

#include "platform/linux/display/DisplayLink.h"
#include "platform/linux/x11/NullWindow.h"
#include "platform/linux/x11/Panel.h"

namespace dormel::x11 {
namespace {

constexpr int FRAME_MILLISECONDS = 16;
constexpr int DRAWN_FRAME_MILLISECONDS = 33;  // every pixel is computed: half as often

}  // namespace

PanelServer::PanelServer(RunLoop& loop, const std::shared_ptr<Connection>& connection, const ServerFeatures& features,
                         std::shared_ptr<ScreensX11> screens, CanvasFactory& canvases, const Clock& clock)
    : env_(connection ? std::make_shared<PanelContext>(connection, features, std::move(screens), canvases, clock)
                      : nullptr),
      loop_(loop),
      animator_(loop, clock, [this] {
        return env_ && env_->compositor.isRunning() ? FRAME_MILLISECONDS : DRAWN_FRAME_MILLISECONDS;
      }) {}

std::shared_ptr<Window> PanelServer::makeWindow(const WindowStyle& style, const Rect& contentRect) {
  if (!env_) return std::make_shared<NullWindow>(contentRect);
  return Panel::create(env_, style, contentRect);
}

void PanelServer::animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                               TimingCurve curve, Task completion) {
  animator_.animate(windows, alpha, duration, curve, std::move(completion));
}

std::unique_ptr<Registration> PanelServer::addLocalKeyDownMonitor(std::function<bool(const KeyEvent&)> monitor) {
  if (!env_) return nullptr;
  return env_->keyMonitors.add(std::move(monitor));
}

std::unique_ptr<Registration> PanelServer::makeDisplayLink(Task onFrame) {
  return std::make_unique<DisplayLink>(loop_, std::move(onFrame));
}

}  // namespace dormel::x11
