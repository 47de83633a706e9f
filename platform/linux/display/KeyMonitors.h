// Who sees a key-down before the window that it is for. Main thread only.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Keyboard.h"
#include "platform/Registration.h"

namespace dormel {

class KeyMonitors {
 public:
  using Monitor = std::function<bool(const KeyEvent&)>;

  /// Until the registration goes.
  [[nodiscard]] std::unique_ptr<Registration> add(Monitor monitor) {
    struct Kept final : Registration {
      explicit Kept(Monitor monitor) : shared(std::make_shared<Monitor>(std::move(monitor))) {}
      std::shared_ptr<Monitor> shared;
    };
    auto kept = std::make_unique<Kept>(std::move(monitor));
    monitors_.emplace_back(kept->shared);
    return kept;
  }
  /// Whether one swallows the key-down; those after it do not see it.
  [[nodiscard]] bool swallow(const KeyEvent& event) {
    std::erase_if(monitors_, [](const auto& weak) { return weak.expired(); });
    const auto present = monitors_;
    return std::any_of(present.begin(), present.end(), [&](const auto& weak) {
      const auto monitor = weak.lock();
      return monitor && (*monitor)(event);
    });
  }

 private:
  std::vector<std::weak_ptr<Monitor>> monitors_;
};

}  // namespace dormel
