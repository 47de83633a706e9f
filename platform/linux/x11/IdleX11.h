// How long the input devices have been idle, by the screen-saver extension: one figure for all kinds of input.
#pragma once

#include <chrono>
#include <memory>
#include <optional>

#include "platform/Keyboard.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class IdleX11 : public InputIdle {
 public:
  IdleX11(std::shared_ptr<Connection> connection, const ServerFeatures& features)
      : connection_(std::move(connection)), isKnown_(features.screenSaver) {}
  [[nodiscard]] Seconds secondsSinceLast(InputKind kind) const override;

 private:
  std::shared_ptr<Connection> connection_;
  bool isKnown_;
  mutable Seconds answer_ = -1;
  mutable std::optional<std::chrono::steady_clock::time_point> askedAt_;
};

}  // namespace dormel::x11
