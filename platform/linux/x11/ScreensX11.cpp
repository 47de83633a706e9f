#include "platform/linux/x11/ScreensX11.h"

#include <xcb/randr.h>

#include <utility>

#include "platform/linux/x11/DisplayScale.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

ScreensX11::ScreensX11(RunLoop& loop, std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features), announcement_(loop, [this] { announce(); }) {
  if (!connection_) return;
  if (features_.randr >= 2) {
    xcb_randr_select_input(
        *connection_, connection_->root(),
        XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
  }
  announced_ = desk();
}

void ScreensX11::handle(const xcb_generic_event_t& event) {
  const int type = event.response_type & 0x7f;
  if (type == features_.randrEvent + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
      type == features_.randrEvent + XCB_RANDR_NOTIFY) {
    isStale_ = true;
    announcement_.ask();  // one configuration comes as a burst of events; what has arrived by then is one notice
  }
}

void ScreensX11::announce() {
  if (desk() == announced_) return;
  announced_ = desk_;
  if (onChange_) onChange_();
  if (afterChange_) afterChange_();
}

const ScreensX11::Desk& ScreensX11::desk() const {
  if (!connection_ || !std::exchange(isStale_, false)) return desk_;
  auto resources = connection_->askProperty(connection_->root(), XCB_ATOM_RESOURCE_MANAGER);
  auto monitors = queryMonitors(*connection_, features_.randr);
  if (monitors.empty() && !desk_.monitors.empty()) return desk_;
  if (monitors.empty()) monitors = queryMonitors(*connection_, 0);  // a server without any output, a virtual one
  if (monitors.empty()) return desk_;
  const Monitor& main = monitors.front();
  desk_.space.scale =
      displayScale(xftDpi(Connection::text(std::move(resources))), main.area.width, main.widthMillimetres);
  desk_.space.originX = main.area.x;
  desk_.space.originBottom = main.area.y + main.area.height;
  desk_.monitors = std::move(monitors);
  return desk_;
}

const CoordinateSpace& ScreensX11::space() const { return desk().space; }

std::vector<Screen> ScreensX11::all() const {
  std::vector<Screen> screens;
  if (desk().monitors.empty()) return screens;
  const auto area = workArea();
  for (const Monitor& monitor : desk_.monitors) screens.push_back(screen(monitor, area));
  return screens;
}

std::optional<Screen> ScreensX11::main() const {
  if (desk().monitors.empty()) return std::nullopt;
  return screen(desk_.monitors.front(), workArea());
}

Screen ScreensX11::screen(const Monitor& monitor, const std::optional<PixelRect>& workArea) const {
  PixelRect visible = monitor.area;
  if (workArea) {
    const PixelRect common = intersection(visible, *workArea);
    if (!common.empty()) visible = common;
  }
  return {monitor.name, desk_.space.toPoints(monitor.area), desk_.space.toPoints(visible), displayBounds(monitor.area)};
}

Rect ScreensX11::displayBounds(const PixelRect& area) const {
  if (desk().monitors.empty()) return {};
  const PixelRect& main = desk_.monitors.front().area;
  const double scale = desk_.space.scale;
  return {(area.x - main.x) / scale, (area.y - main.y) / scale, area.width / scale, area.height / scale};
}

std::optional<PixelRect> ScreensX11::workArea() const {
  auto askedAreas = connection_->askProperty(connection_->root(), connection_->atom("_NET_WORKAREA"));
  auto askedCurrent = connection_->askProperty(connection_->root(), connection_->atom("_NET_CURRENT_DESKTOP"));
  const auto areas = Connection::items(std::move(askedAreas));
  const auto current = Connection::items(std::move(askedCurrent));
  const std::size_t first = current.empty() ? 0 : std::size_t{current.front()} * 4;
  if (first + 4 > areas.size()) return std::nullopt;
  return PixelRect{static_cast<int>(areas[first]), static_cast<int>(areas[first + 1]),
                   static_cast<int>(areas[first + 2]), static_cast<int>(areas[first + 3])};
}

}  // namespace dormel::x11
