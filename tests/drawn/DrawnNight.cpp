#include "tests/drawn/DrawnNight.h"

#include <cassert>
#include <utility>

#include "core/Config.h"

namespace dormel {

DrawnNight::DrawnNight(const Options& options) : DrawnMachine(options.seed) {
  machine.setWallClock(options.at);
  for (const auto& [key, legend] : {std::pair{58, "Alt"}, {61, "Alt"}, {55, "Super"}, {54, "Menu / Ctrl"}}) {
    machine.layout.setLegend(static_cast<KeyCode>(key), legend);
  }
  for (const auto& [key, produces] : options.layout) machine.layout.set(key, produces);
  store(defaultsKey::use24HourClock, {options.use24HourClock});
  session = ScreenManager::create();
  session->activate(true);
  machine.settle();
}

void DrawnNight::holdKeys(std::size_t count) {
  const auto& keys = session->bypassController()->requiredKeys();
  for (std::size_t i = 0; i < count && i < keys.size(); ++i) machine.keyboard.press(keys[i].keyCode);
  machine.settle();
}

std::shared_ptr<View> DrawnNight::view() const {
  assert(!session->windows().empty());
  return static_cast<SimWindow&>(session->windows().front()->window()).content();
}

}  // namespace dormel
