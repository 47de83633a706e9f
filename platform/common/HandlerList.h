// The handlers that wait for one kind of news, each for as long as its registration lives. Main thread only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Registration.h"
#include "platform/RunLoop.h"

namespace dormel {

class HandlerList {
 public:
  /// Never null. The registration may outlive the list.
  [[nodiscard]] std::unique_ptr<Registration> add(Task handler) {
    auto kept = std::make_shared<Task>(std::move(handler));
    std::erase_if(handlers_, [](const auto& gone) { return gone.expired(); });
    handlers_.push_back(kept);
    return std::make_unique<Handler>(std::move(kept));
  }

  /// Calls them in the order they came. A handler may add others, which are not called yet, and end any registration,
  /// its own included.
  void call() const {
    const auto present = handlers_;
    for (const auto& waiting : present) {
      if (const auto handler = waiting.lock()) (*handler)();
    }
  }

  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(
        std::count_if(handlers_.begin(), handlers_.end(), [](const auto& handler) { return !handler.expired(); }));
  }

 private:
  struct Handler final : Registration {
    explicit Handler(std::shared_ptr<Task> task) : kept(std::move(task)) {}
    std::shared_ptr<Task> kept;
  };

  std::vector<std::weak_ptr<Task>> handlers_;
};

}  // namespace dormel
