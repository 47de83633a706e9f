// An alert on its way to being drawn: its texts, and the one answer it takes. Main thread only.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>

#include "platform/Alerts.h"
#include "platform/View.h"

namespace dormel {

class AlertView : public View {
 public:
  /// `onAnswer` is called once, inside `answer`.
  AlertView(Alert alert, std::function<void(std::size_t)> onAnswer)
      : alert_(std::move(alert)), onAnswer_(std::move(onAnswer)) {}

  [[nodiscard]] ViewKind kind() const override { return ViewKind::alert; }
  [[nodiscard]] const Alert& alert() const { return alert_; }

  /// The button that Escape presses.
  [[nodiscard]] std::optional<std::size_t> cancelButton() const;

  void answer(std::size_t button) {
    if (onAnswer_) std::exchange(onAnswer_, {})(button);
  }

 private:
  Alert alert_;
  std::function<void(std::size_t)> onAnswer_;
};

}  // namespace dormel
