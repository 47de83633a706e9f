// The handlers that wait for one kind of news, each for as long as its registration lives. Main thread only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Registration.h"

namespace dormel {

/// `News` is what a handler is told; nothing for most.
template <typename... News>
class HandlerList {
 public:
  using Handler = std::function<void(News...)>;

  /// Never null. The registration may outlive the list.
  [[nodiscard]] std::unique_ptr<Registration> add(Handler handler) {
    auto kept = std::make_shared<Kept>(std::move(handler));
    std::erase_if(handlers_, [](const auto& gone) { return gone.expired(); });
    handlers_.push_back(kept);
    return std::make_unique<Held>(std::move(kept));
  }

  /// Calls them in the order they came. A handler may add others, which are not called yet, end any registration, its
  /// own included, and destroy the list.
  void call(News... news) const {
    const auto present = handlers_;
    for (const auto& waiting : present) {
      if (const auto handler = waiting.lock()) (*handler)(news...);
    }
  }

  [[nodiscard]] std::size_t size() const {
    return static_cast<std::size_t>(
        std::count_if(handlers_.begin(), handlers_.end(), [](const auto& handler) { return !handler.expired(); }));
  }

 private:
  using Kept = const Handler;
  struct Held final : Registration {
    explicit Held(std::shared_ptr<Kept> handler) : kept(std::move(handler)) {}
    std::shared_ptr<Kept> kept;
  };

  std::vector<std::weak_ptr<Kept>> handlers_;
};

}  // namespace dormel
