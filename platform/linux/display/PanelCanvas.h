// What a panel shows: a view on a canvas, which is made only once the panel is up, because covering waits for no
// toolkit. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/Windows.h"
#include "platform/common/Canvas.h"
#include "platform/linux/display/CoalescedTimer.h"

namespace dormel {

class PanelCanvas {
 public:
  struct Panel {
    /// Finds the room that there is and the scale, and calls `fit`.
    Task layOut;
    std::function<void(const Pixels& pixels, const PixelRect& changed)> onFrame;
  };

  /// `loop` and `canvases` outlive it.
  PanelCanvas(RunLoop& loop, CanvasFactory& canvases, const WindowStyle& style, Panel panel);

  void setView(std::shared_ptr<View> view);
  [[nodiscard]] Size fittingSize() const;
  /// The panel came up. Its content follows in a later turn.
  void show();
  /// The panel has gone.
  void hide();

  /// On a black panel the content is as large as it wants and there is room for; any other panel it fills.
  void fit(const Size& room, double scale);
  void layOutLater() { layOutLater_.ask(); }
  /// As of the last `fit`.
  [[nodiscard]] const Size& size() const { return size_; }

  /// Tells the content of the pointer, in points from its top left corner. A press on what takes none drags a panel
  /// that can be moved: answers by how far it is to go right and down, if it is.
  struct Move {
    double right;
    double down;
  };
  [[nodiscard]] std::optional<Move> pointer(PointerAction action, double x, double y);
  [[nodiscard]] bool isDragged() const { return drag_.has_value(); }
  void endDrag() { drag_.reset(); }

 private:
  void showNow();
  /// True: a press was taken.
  bool tell(PointerAction action, double x, double y);
  Canvas* canvas() const;

  CanvasFactory& canvases_;
  const bool isBlack_;
  const bool isMovable_;
  Panel panel_;
  std::shared_ptr<View> view_;
  mutable std::unique_ptr<Canvas> canvas_;
  bool isShown_ = false;
  Size fitting_;  ///< as of the last `fit`
  Size size_;
  double scale_ = 0;
  std::optional<Move> drag_;  ///< where it began
  CoalescedTimer showLater_;
  CoalescedTimer layOutLater_;
};

}  // namespace dormel
