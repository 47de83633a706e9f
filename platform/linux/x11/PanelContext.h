// What all panels of one connection share. It outlives the last of them. Main thread only.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/display/KeyMonitors.h"
#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/x11/Compositor.h"
#include "platform/linux/x11/DesktopSnapshot.h"
#include "platform/linux/x11/KeyNumbering.h"
#include "platform/linux/x11/PanelFocus.h"
#include "platform/linux/x11/ScreensX11.h"
#include "platform/linux/x11/Stacking.h"

namespace dormel::x11 {

class Panel;

struct PanelContext {
  PanelContext(std::shared_ptr<Connection> connection, const ServerFeatures& features,
               std::shared_ptr<ScreensX11> screens, CanvasFactory& canvases, const Clock& clock);
  PanelContext(const PanelContext&) = delete;
  PanelContext& operator=(const PanelContext&) = delete;
  ~PanelContext();

  void handle(const xcb_generic_event_t& event);
  void compositorChanged();
  void placePanelsAnew();

  std::shared_ptr<Connection> connection;
  ServerFeatures features;
  std::shared_ptr<ScreensX11> screens;
  CanvasFactory& canvases;
  const Clock& clock;
  Compositor compositor;  // asks; what follows waits for both answers
  Visuals visuals;
  DesktopSnapshot desktop;
  Stacking stacking;
  PanelFocus focus;
  xcb_cursor_t blankCursor;
  KeyNumbering numbering;
  KeyTracker keys;  ///< of the key events that reach our windows
  std::map<xcb_window_t, std::weak_ptr<Panel>> panels;
  KeyMonitors keyMonitors;
  Subscription subscription;
};

}  // namespace dormel::x11
