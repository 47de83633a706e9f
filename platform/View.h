// What a window shows, as logic sees it: an object that decides texts, colours and timings. The drawing side knows
// each concrete view by its kind and lays it out; logic never learns how.
#pragma once

namespace dormel {

enum class ViewKind { blockerOverlay, graceCountdown, accessibilityCard, statusPage };

class View {
 public:
  virtual ~View() = default;
  [[nodiscard]] virtual ViewKind kind() const = 0;
};

}  // namespace dormel
