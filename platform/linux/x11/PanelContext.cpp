#include "platform/linux/x11/PanelContext.h"

#include <xcb/shape.h>

#include <utility>

#include "platform/linux/x11/HardwareKeysX11.h"
#include "platform/linux/x11/InputGrab.h"
#include "platform/linux/x11/Panel.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {
namespace {

/// The window an event of our own windows was reported to; none for every other event.
xcb_window_t addressee(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
    case XCB_MOTION_NOTIFY:
    case XCB_LEAVE_NOTIFY:
      return reinterpret_cast<const xcb_key_press_event_t&>(event).event;  // all have it in the same place
    case XCB_FOCUS_IN:
      return reinterpret_cast<const xcb_focus_in_event_t&>(event).event;
    case XCB_EXPOSE:
      return reinterpret_cast<const xcb_expose_event_t&>(event).window;
    case XCB_UNMAP_NOTIFY:
      return reinterpret_cast<const xcb_unmap_notify_event_t&>(event).event;
    case XCB_CONFIGURE_NOTIFY:
      return reinterpret_cast<const xcb_configure_notify_event_t&>(event).event;
    case XCB_DESTROY_NOTIFY:
      return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).event;
    case XCB_PROPERTY_NOTIFY:
      return reinterpret_cast<const xcb_property_notify_event_t&>(event).window;
    default:
      return XCB_NONE;
  }
}

}  // namespace

PanelContext::PanelContext(std::shared_ptr<Connection> theConnection, const ServerFeatures& theFeatures,
                           std::shared_ptr<ScreensX11> theScreens, CanvasFactory& theCanvases, const Clock& theClock)
    : connection(std::move(theConnection)),
      features(theFeatures),
      screens(std::move(theScreens)),
      canvases(theCanvases),
      clock(theClock),
      compositor(connection, features),
      visuals(Visuals::query(*connection, features)),
      desktop(connection, visuals),
      stacking(connection, clock),
      focus(connection, clock),
      blankCursor(makeBlankCursor(*connection)),
      numbering(connection, features) {
  compositor.setOnChange([this] { compositorChanged(); });
  screens->setAfterChange([this] { placePanelsAnew(); });
  if (features.xkb) {
    // A held key is one press and one release, not a row of both.
    constexpr std::uint32_t DETECTABLE_REPEAT = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto cookie =
        xcb_xkb_per_client_flags(*connection, XCB_XKB_ID_USE_CORE_KBD, DETECTABLE_REPEAT, DETECTABLE_REPEAT, 0, 0, 0);
    xcb_discard_reply(*connection, cookie.sequence);
  }
  subscription = connection->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

PanelContext::~PanelContext() {
  screens->setAfterChange({});
  xcb_free_cursor(*connection, blankCursor);
}

void PanelContext::handle(const xcb_generic_event_t& event) {
  if (features.shape && (event.response_type & 0x7f) == features.shapeEvent + XCB_SHAPE_NOTIFY) {
    const auto& shape = reinterpret_cast<const xcb_shape_notify_event_t&>(event);
    const auto shaped = panels.find(shape.affected_window);
    const auto panel = shaped == panels.end() ? nullptr : shaped->second.lock();
    if (panel) panel->shapeChanged(shape.shape_kind, shape.shaped != 0);
    return;
  }
  const auto found = panels.find(addressee(event));
  if (found == panels.end()) return;
  const auto panel = found->second.lock();
  if (!panel) return;
  if ((event.response_type & 0x7f) == XCB_FOCUS_IN) {
    // What happened while the keys went elsewhere is not known: start from what is down now.
    keys.clear();
    for (const std::uint8_t down : keysDown({*connection, xcb_query_keymap(*connection)})) {
      keys.seed(down, numbering.usual().virtualKeyCode(down));
    }
    return;
  }
  panel->handle(event);
}

void PanelContext::compositorChanged() {
  for (const auto& [window, weak] : panels) {
    if (const auto panel = weak.lock()) panel->compositorChanged();
  }
  if (compositor.isRunning()) desktop.drop();
  connection->flush();
}

void PanelContext::placePanelsAnew() {
  for (const auto& [window, weak] : panels) {
    if (const auto panel = weak.lock()) panel->placeAnew();
  }
  connection->flush();
}

}  // namespace dormel::x11
