#include "platform/linux/x11/ScreensX11.h"

#include <xcb/randr.h>

#include <utility>

#include "platform/linux/x11/DisplayScale.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

ScreensX11::ScreensX11(RunLoop& loop, std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features), announcement_(loop, [this] { announce(); }) {
  if (!connection_) return;
  if (features_.randr) {
    xcb_randr_select_input(
        *connection_, connection_->root(),
        XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
  }
  announced_ = layout();
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
  if (layout() == announced_) return;
  announced_ = layout_;
  if (onChange_) onChange_();
  if (afterChange_) afterChange_();
}

const ScreensX11::Layout& ScreensX11::layout() const {
  if (!connection_ || !std::exchange(isStale_, false)) return layout_;
  auto resources = connection_->askProperty(connection_->root(), XCB_ATOM_RESOURCE_MANAGER);
  auto monitors = queryMonitors(*connection_, features_.randr);
  if (monitors.empty() && !layout_.monitors.empty()) return layout_;
  if (monitors.empty()) monitors = queryMonitors(*connection_, false);  // a server without any output, a virtual one
  if (monitors.empty()) return layout_;
  const Monitor& main = monitors.front();
  layout_.space.scale =
      displayScale(xftDpi(Connection::text(std::move(resources))), main.area.width, main.widthMillimetres);
  layout_.space.originX = main.area.x;
  layout_.space.originBottom = main.area.y + main.area.height;
  layout_.monitors = std::move(monitors);
  return layout_;
}

const CoordinateSpace& ScreensX11::space() const { return layout().space; }

std::vector<Screen> ScreensX11::all() const {
  std::vector<Screen> screens;
  if (layout().monitors.empty()) return screens;
  const auto area = workArea();
  for (const Monitor& monitor : layout_.monitors) screens.push_back(screen(monitor, area));
  return screens;
}

std::optional<Screen> ScreensX11::main() const {
  if (layout().monitors.empty()) return std::nullopt;
  return screen(layout_.monitors.front(), workArea());
}

Screen ScreensX11::screen(const Monitor& monitor, const std::optional<PixelRect>& workArea) const {
  PixelRect visible = monitor.area;
  if (workArea) {
    const PixelRect common = intersection(visible, *workArea);
    if (!common.empty()) visible = common;
  }
  return {monitor.name, layout_.space.toPoints(monitor.area), layout_.space.toPoints(visible),
          displayBounds(monitor.area)};
}

Rect ScreensX11::displayBounds(const PixelRect& area) const {
  if (layout().monitors.empty()) return {};
  const PixelRect& main = layout_.monitors.front().area;
  const double scale = layout_.space.scale;
  return {(area.x - main.x) / scale, (area.y - main.y) / scale, area.width / scale, area.height / scale};
}

std::optional<PixelRect> ScreensX11::workArea() const {
  auto askedAreas = connection_->askProperty(connection_->root(), "_NET_WORKAREA");
  auto askedCurrent = connection_->askProperty(connection_->root(), "_NET_CURRENT_DESKTOP");
  const auto areas = Connection::items(std::move(askedAreas));
  const auto current = Connection::items(std::move(askedCurrent));
  const std::size_t first = current.empty() ? 0 : std::size_t{current.front()} * 4;
  if (first + 4 > areas.size()) return std::nullopt;
  return PixelRect{static_cast<int>(areas[first]), static_cast<int>(areas[first + 1]),
                   static_cast<int>(areas[first + 2]), static_cast<int>(areas[first + 3])};
}

}  // namespace dormel::x11
