#include "platform/linux/wayland/Outputs.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/CommonArea.h"
#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

/// Larger than any layout: what a compositor says beyond that is no place.
constexpr int FAR = 1 << 24;

bool isSane(const PixelRect& area) {
  return !area.empty() && area.width < FAR && area.height < FAR && std::abs(area.x) < FAR && std::abs(area.y) < FAR;
}

}  // namespace

std::vector<Screen> OutputLayout::screens() const {
  std::vector<std::pair<std::string, PixelRect>> shown;
  for (const auto& output : outputs) {
    const bool isMirror =
        std::any_of(shown.begin(), shown.end(), [&](const auto& other) { return other.second == output.second; });
    if (isSane(output.second) && !isMirror) shown.push_back(output);
  }
  std::stable_sort(shown.begin(), shown.end(), [](const auto& a, const auto& b) {
    return std::pair(a.second.x, a.second.y) < std::pair(b.second.x, b.second.y);
  });
  const auto origin = std::find_if(shown.begin(), shown.end(),
                                   [](const auto& output) { return output.second.x == 0 && output.second.y == 0; });
  if (origin != shown.end()) std::rotate(shown.begin(), origin, origin + 1);
  std::vector<Screen> screens;
  for (const auto& [name, area] : shown) {
    const PixelRect& main = shown.front().second;
    const double x = area.x - main.x;
    const double y = area.y - main.y;
    const Rect frame{x, main.height - y - area.height, static_cast<double>(area.width),
                     static_cast<double>(area.height)};
    // What bars and docks leave free, the compositor tells nobody; it moves what stands at an edge by itself.
    screens.push_back({name, frame, frame, Rect{x, y, frame.width, frame.height}});
  }
  return screens;
}

const Screen* screenShowing(const std::vector<Screen>& screens, const Rect& frame) {
  const Screen* best = nullptr;
  double most = 0;
  double beside = 0;
  for (const Screen& screen : screens) {
    const double area = commonArea(screen.frame, frame);
    const double rest = screen.frame.width * screen.frame.height - area;
    if (area <= 0 || area < most || (area == most && rest >= beside)) continue;
    best = &screen;
    most = area;
    beside = rest;
  }
  return best;
}

Outputs::Outputs(Connection& connection, EventLoop& loop)
    : connection_(connection), announcement_(loop, [this] { announce(); }) {}

void Outputs::arrived(const Connection::Arrival& arrival) {
  auto output = std::make_shared<Output>();
  output->number = arrival.number;
  output->handle.reset(static_cast<wl_output*>(wl_registry_bind(
      connection_.registry(), arrival.number, &wl_output_interface, std::min(arrival.version, std::uint32_t{3}))));
  // One configuration comes as a burst of events; what has arrived by the next turn is one notice.
  static constexpr wl_output_listener HANDLE{
      [](void*, wl_output*, int, int, int, int, int, const char*, const char*, int) {},
      [](void*, wl_output*, std::uint32_t, int, int, int) {},
      [](void* output, wl_output*) { static_cast<Output*>(output)->changed->ask(); },
      [](void* output, wl_output*, int scale) { static_cast<Output*>(output)->scale = std::clamp(scale, 1, 16); },
      [](void*, wl_output*, const char*) {},
      [](void*, wl_output*, const char*) {}};
  static constexpr zxdg_output_v1_listener LOGICAL{
      [](void* output, zxdg_output_v1*, int x, int y) {
        auto& self = *static_cast<Output*>(output);
        self.area.x = x;
        self.area.y = y;
        self.changed->ask();
      },
      [](void* output, zxdg_output_v1*, int width, int height) {
        auto& self = *static_cast<Output*>(output);
        self.area.width = width;
        self.area.height = height;
        self.changed->ask();
      },
      [](void*, zxdg_output_v1*) {},
      [](void* output, zxdg_output_v1*, const char* name) { static_cast<Output*>(output)->name = name; },
      [](void*, zxdg_output_v1*, const char*) {}};
  output->changed = &announcement_;
  wl_output_add_listener(output->handle.get(), &HANDLE, output.get());
  output->logical.reset(
      zxdg_output_manager_v1_get_xdg_output(connection_.globals().outputManager.get(), output->handle.get()));
  zxdg_output_v1_add_listener(output->logical.get(), &LOGICAL, output.get());
  outputs_.push_back(std::move(output));
}

void Outputs::departed(std::uint32_t number) {
  if (std::erase_if(outputs_, [&](const auto& output) { return output->number == number; }) != 0) announcement_.ask();
}

OutputLayout Outputs::layout() const {
  OutputLayout layout;
  for (const auto& output : outputs_) layout.outputs.emplace_back(output->name, output->area);
  return layout;
}

void Outputs::announce() {
  if (onOutputs_) onOutputs_();
  const OutputLayout now = layout();
  if (now == announced_) return;
  auto screens = now.screens();
  if (screens.empty()) return;  // the moment between two configurations, the last cable pulled
  announced_ = now;
  screens_ = std::move(screens);
  if (onChange_) onChange_();
}

std::optional<Screen> Outputs::main() const {
  return screens_.empty() ? std::nullopt : std::optional(screens_.front());
}

std::shared_ptr<Output> Outputs::showing(const Rect& frame) const {
  const auto outputOf = [&](const Screen& screen) {
    return std::find_if(outputs_.begin(), outputs_.end(),
                        [&](const auto& output) { return output->name == screen.name; });
  };
  std::vector<Screen> present;
  std::copy_if(screens_.begin(), screens_.end(), std::back_inserter(present),
               [&](const Screen& screen) { return outputOf(screen) != outputs_.end(); });
  const Screen* const best = screenShowing(present, frame);
  return best != nullptr ? *outputOf(*best) : nullptr;
}

}  // namespace dormel::wayland
