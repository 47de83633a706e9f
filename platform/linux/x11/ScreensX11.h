// The screens of the X server, in points, and the notice that they changed.
#pragma once

#include <optional>
#include <vector>

#include "platform/Screens.h"
#include "platform/common/CoordinateSpace.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Monitors.h"
#include "platform/linux/x11/ServerFeatures.h"

namespace dormel::x11 {

class ScreensX11 : public Screens {
 public:
  /// Without a connection there are no screens. `loop` outlives it.
  ScreensX11(RunLoop& loop, std::shared_ptr<Connection> connection, const ServerFeatures& features);

  /// When the server says that nothing shows at all (the moment between two configurations, the last cable
  /// pulled), the screens of the moment before: nobody is to be uncovered by it.
  [[nodiscard]] std::vector<Screen> all() const override;
  [[nodiscard]] std::optional<Screen> main() const override;

  /// How points and pixels relate at present.
  [[nodiscard]] const CoordinateSpace& space() const;

  /// A rectangle of the root window in points from the main screen's top left corner, y downwards.
  [[nodiscard]] Rect displayBounds(const PixelRect& area) const;

  /// Called from the run loop after the screens or the scale really changed, a few milliseconds after the server
  /// said so.
  void setOnChange(Task onChange) { onChange_ = std::move(onChange); }
  /// Called right after that, in the same turn: what stands on the screens by its points is to be placed anew. Whoever
  /// was told of the change has put its new windows up by then, and nothing is uncovered that it covers.
  void setAfterChange(Task afterChange) { afterChange_ = std::move(afterChange); }

 private:
  struct Layout {
    std::vector<Monitor> monitors;
    CoordinateSpace space;
    friend bool operator==(const Layout&, const Layout&) = default;
  };

  void handle(const xcb_generic_event_t& event);
  void announce();
  const Layout& layout() const;
  [[nodiscard]] Screen screen(const Monitor& monitor, const std::optional<PixelRect>& workArea) const;
  [[nodiscard]] std::optional<PixelRect> workArea() const;

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  mutable Layout layout_;
  mutable bool isStale_ = true;
  Layout announced_;
  Task onChange_;
  Task afterChange_;
  Subscription subscription_;
  CoalescedTimer announcement_;
};

}  // namespace dormel::x11
