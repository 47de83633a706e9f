// Drags out of our panels into other programs' windows. The picture is a panel of its own under the pointer, which a
// drop that fails sends back to where it came from. One drag at a time. Main thread only.
#pragma once

#include <memory>
#include <optional>

#include "platform/Dragging.h"
#include "platform/Time.h"
#include "platform/linux/x11/PanelServer.h"
#include "platform/linux/x11/XdndSource.h"

namespace dormel::x11 {

class DraggingX11 final : public Dragging {
 public:
  /// Without a connection no drag begins. What is handed over outlives it.
  DraggingX11(RunLoop& loop, std::shared_ptr<Connection> connection, PanelServer& panels, const Clock& clock);
  DraggingX11(const DraggingX11&) = delete;
  DraggingX11& operator=(const DraggingX11&) = delete;
  ~DraggingX11() override;

  bool begin(DragItem item, std::function<void(DragOperation)> onEnd) override;

 private:
  struct Session {
    std::function<void(DragOperation)> onEnd;
    std::shared_ptr<Window> picture;
    Rect home;       // where the picture came from, in whole pixels
    int startX = 0;  // the pointer at that moment, in pixels
    int startY = 0;
    int x = 0;  // and now
    int y = 0;
    double scale = 1;
    xcb_timestamp_t time = 0;
    std::unique_ptr<XdndSource> source;  // until the end is known
    Rect flownFrom;
    Seconds flyingSince = 0;
  };

  void handle(const xcb_generic_event_t& event);
  [[nodiscard]] bool grab(xcb_timestamp_t time);
  void ungrab();
  void follow();
  void flyBack();
  void flyBackStep();
  void end(DragOperation operation);

  RunLoop& loop_;
  std::shared_ptr<Connection> connection_;
  PanelServer& panels_;
  const Clock& clock_;
  xcb_window_t window_ = XCB_NONE;  // off the screen: holds the grabs and speaks for the source
  bool isGrabbed_ = false;
  std::unique_ptr<Session> session_;
  Later followLater_;
  Later letGo_;
  Timer flight_;
  Subscription subscription_;
};

}  // namespace dormel::x11
