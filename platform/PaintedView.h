// A view whose picture another process may draw. What has to cross for that is one small plain state, written as bytes
// by the view's own folder and read there again, beside the scene that shows it. Everything in between sees only bytes.
// Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Geometry.h"
#include "platform/RunLoop.h"
#include "platform/View.h"

namespace dormel {

/// Whether a text can be written by whoever asks. Where it cannot, a name that every alphabet has takes its place.
using CanWrite = std::function<bool(std::string_view utf8)>;

class PaintedView : public View {
 public:
  /// The state that its picture has to show now.
  [[nodiscard]] virtual std::string encodedState() const = 0;

  /// Calls `handler` whenever the state may have changed, until the last copy of what it returns goes.
  [[nodiscard]] virtual std::shared_ptr<const void> observeState(Task handler) = 0;

  /// Whether the picture moves by time alone at this moment, without any change of the state.
  [[nodiscard]] virtual bool isMoving() const { return false; }

  /// The size in points at which its picture is as it wants to be. It never depends on what is drawn.
  [[nodiscard]] virtual Size fittingSize() const = 0;

  /// Called by the drawing side when the view first comes on screen.
  virtual void onAppear() {}

  /// A control in the picture was pressed; the numbers are the view's own, and unknown ones do nothing.
  virtual void act(std::uint32_t /*action*/) {}

  /// What it says, line by line, for the case that its picture cannot be had. Nothing that the user needs to get out
  /// may be missing from it.
  [[nodiscard]] virtual std::vector<std::string> plainLines(const CanWrite& canWrite) const = 0;
};

}  // namespace dormel
