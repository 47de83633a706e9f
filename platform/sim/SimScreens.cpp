#include "platform/sim/SimScreens.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace dormel {
namespace {

constexpr double BAR = 24;

}  // namespace

std::unique_ptr<Registration> SimNotices::observe(Notice notice, Task handler) {
  return (*observers_)[notice].add(std::move(handler));
}

void SimNotices::post(Notice notice) {
  timeline_.addMain(0, 0, [observers = observers_, notice] { (*observers)[notice].call(); });
}

std::vector<Screen> SimScreens::all() const {
  std::vector<Screen> screens;
  for (const Plugged& plugged : screens_) {
    const Rect frame = space_.toPoints(plugged.area);
    const Rect& main = screens.empty() ? frame : screens.front().frame;
    const Rect bounds{frame.x - main.x, main.top() - frame.top(), frame.width, frame.height};
    const Rect usable{frame.x + dock_, frame.y, frame.width - dock_, frame.height - BAR};
    screens.push_back({plugged.name, frame, usable, bounds});
  }
  return screens;
}

std::vector<PixelRect> SimScreens::pixels() const {
  std::vector<PixelRect> areas;
  for (const Plugged& plugged : screens_) areas.push_back(plugged.area);
  return areas;
}

void SimScreens::plug(const std::string& name, const Rect& frame) {
  journal_.note("screen ", name, " plugged");
  screens_.push_back({name, space_.toPixels(frame)});
  changed();
}

void SimScreens::pull(const std::string& name) {
  journal_.note("screen ", name, " pulled");
  std::erase_if(screens_, [&](const Plugged& screen) { return screen.name == name; });
  changed();
}

void SimScreens::resize(const std::string& name, const Rect& frame) {
  journal_.note("screen ", name, " resized");
  for (Plugged& screen : screens_) {
    if (screen.name == name) screen.area = space_.toPixels(frame);
  }
  changed();
}

void SimScreens::place(const std::string& name, const PixelRect& area) {
  journal_.note("screen ", name, " placed");
  const auto at = std::find_if(screens_.begin(), screens_.end(), [&](const Plugged& s) { return s.name == name; });
  if (at == screens_.end()) {
    screens_.push_back({name, area});
  } else {
    at->area = area;
  }
  changed();
}

void SimScreens::shift(int right, int down) {
  journal_.note("screens shifted");
  for (Plugged& screen : screens_) {
    screen.area.x += right;
    screen.area.y += down;
  }
  changed();
}

void SimScreens::setScale(double scale, bool pixelsToo) {
  journal_.note("scale ", scale);
  const double factor = scale / space_.scale;
  const auto scaled = [factor](int pixels) { return static_cast<int>(std::lround(pixels * factor)); };
  for (Plugged& screen : screens_) {
    PixelRect& area = screen.area;
    if (pixelsToo) area = {scaled(area.x), scaled(area.y), scaled(area.width), scaled(area.height)};
  }
  space_.scale = scale;
  changed();
}

void SimScreens::changed() {
  if (!screens_.empty()) {
    const PixelRect& main = screens_.front().area;
    space_.originX = main.x;
    space_.originBottom = main.y + main.height;
  }
  noticeOnly();
  if (onChange_) onChange_();
}

}  // namespace dormel
