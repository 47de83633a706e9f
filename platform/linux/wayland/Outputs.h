// The compositor's outputs as screens in points, and the notice that they changed. A point is what the compositor calls
// a logical pixel: what it is asked for and what it tells is in points already, and only pictures have pixels.
// Main thread only.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Screens.h"
#include "platform/common/Canvas.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/wayland/Connection.h"

namespace dormel::wayland {

struct Output {
  std::uint32_t number = 0;  ///< the registry's
  Owned<wl_output> handle;
  Owned<zxdg_output_v1> logical;
  std::string name;
  /// In the compositor's space: points from the top left, y downwards. Empty until it is known.
  PixelRect area;
  int scale = 1;  ///< pixels to the point, rounded up where it is a fraction
  CoalescedTimer* changed = nullptr;
};

/// Where screens lie, as logic sees them, given the areas of the compositor's outputs. Plain computation.
struct OutputLayout {
  std::vector<std::pair<std::string, PixelRect>> outputs;

  /// Mirrored outputs, and those that show nothing, left out. The main one is that at the compositor's origin, the
  /// first from the left where none is.
  [[nodiscard]] std::vector<Screen> screens() const;
  friend bool operator==(const OutputLayout&, const OutputLayout&) = default;
};

/// The screen that shows most of this rectangle; where outputs lie over each other and several show as much of it, the
/// one with the least beside it. Null when none shows any. Plain computation.
[[nodiscard]] const Screen* screenShowing(const std::vector<Screen>& screens, const Rect& frame);

class Outputs : public Screens {
 public:
  /// `connection` outlives it.
  Outputs(Connection& connection, EventLoop& loop);

  void arrived(const Connection::Arrival& arrival);
  void departed(std::uint32_t number);
  /// Looks at what has been told so far, instead of in a later turn.
  void announce();

  /// While the compositor has no output at all, the screens of the moment before: nobody is to be uncovered by it.
  [[nodiscard]] std::vector<Screen> all() const override { return screens_; }
  [[nodiscard]] std::optional<Screen> main() const override;

  /// The output of the screen that shows most of this rectangle; null when there is none.
  [[nodiscard]] std::shared_ptr<Output> showing(const Rect& frame) const;
  [[nodiscard]] const std::list<std::shared_ptr<Output>>& outputs() const { return outputs_; }

  /// Called from the loop after outputs came, went or changed, at once: covering a new one comes before all else.
  void setOnOutputs(Task onOutputs) { onOutputs_ = std::move(onOutputs); }
  /// Called from the loop after the screens really changed.
  void setOnChange(Task onChange) { onChange_ = std::move(onChange); }

 private:
  [[nodiscard]] OutputLayout layout() const;

  Connection& connection_;
  std::list<std::shared_ptr<Output>> outputs_;
  std::vector<Screen> screens_;
  OutputLayout announced_;
  Task onOutputs_;
  Task onChange_;
  CoalescedTimer announcement_;
};

}  // namespace dormel::wayland
