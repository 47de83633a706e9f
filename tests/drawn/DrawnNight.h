// A real session on a simulated machine whose views are really drawn.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/ScreenManager.h"
#include "tests/drawn/DrawnMachine.h"

namespace dormel {

class DrawnNight : public DrawnMachine {
 public:
  struct Options {
    std::string at = "2026-11-16 23:05:00";
    bool use24HourClock = true;
    std::uint64_t seed = 1;
    std::vector<std::pair<KeyCode, const char*>> layout{};  ///< what keys produce, on top of the US layout
  };

  DrawnNight() : DrawnNight(Options{}) {}
  explicit DrawnNight(const Options& options);

  void holdKeys(std::size_t count = BYPASS_KEY_COUNT);

  /// The view in the session's first window.
  [[nodiscard]] std::shared_ptr<View> view() const;

  std::shared_ptr<ScreenManager> session;
};

}  // namespace dormel
