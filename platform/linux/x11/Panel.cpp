#include "platform/linux/x11/Panel.h"

#include <unistd.h>
#include <xcb/shape.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>
#include <utility>

#include "platform/common/Shadow.h"

namespace dormel::x11 {
namespace {

constexpr std::uint8_t MAIN_BUTTON = 1;
constexpr KeyTracker::Source WINDOW_KEYS = 1;
constexpr int OUTSIDE = -10000;
constexpr int PUT_BACK_LATER_MILLISECONDS = 100;

}  // namespace

std::shared_ptr<Panel> Panel::create(std::shared_ptr<PanelContext> environment, const WindowStyle& style,
                                     const Rect& contentRect) {
  std::shared_ptr<Panel> panel(new Panel(std::move(environment), style, contentRect));
  panel->makeWindow();
  return panel;
}

Panel::Panel(std::shared_ptr<PanelContext> environment, const WindowStyle& style, const Rect& contentRect)
    : env_(std::move(environment)),
      style_(style),
      frame_(contentRect),
      area_(areaOf(contentRect)),
      surface_(*env_, style.background),
      canvas_(env_->connection->loop(), env_->canvases, style,
              {[this] { layOutContent(); },
               [this](const Pixels& pixels, const PixelRect& changed) { onFrame(pixels, changed); }}),
      putBackBudget_(env_->clock, 20, 1.0),
      putBackLater_(
          env_->connection->loop(),
          [this] {
            if (isVisible_) putBack();
          },
          PUT_BACK_LATER_MILLISECONDS) {}

Panel::~Panel() {
  orderOut();
  env_->panels.erase(window_);
  xcb_destroy_window(*env_->connection, window_);
  env_->connection->flush();
}

void Panel::makeWindow() {
  Connection& c = *env_->connection;
  window_ = c.newId();
  std::uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_KEY_PRESS |
                         XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_FOCUS_CHANGE;
  if (isBlack()) events |= XCB_EVENT_MASK_PROPERTY_CHANGE;
  if (!style_.ignoresMouseEvents) {
    events |= XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_1_MOTION |
              XCB_EVENT_MASK_LEAVE_WINDOW;
    // A blocker has nothing that answers to a pointer passing by; why wake up for it.
    if (!isBlack()) events |= XCB_EVENT_MASK_POINTER_MOTION;
  }
  const bool argb = surface_.isArgb();
  const auto width = static_cast<std::uint16_t>(std::max(1, area_.width));
  const auto height = static_cast<std::uint16_t>(std::max(1, area_.height));
  const std::uint32_t values[] = {
      isBlack() ? c.screen().black_pixel : 0,
      0,
      1,
      events,
      argb ? env_->visuals.argbColormap : c.screen().default_colormap,
      isBlack() ? env_->blankCursor : static_cast<xcb_cursor_t>(XCB_NONE),
  };
  xcb_create_window(c, argb ? std::uint8_t{32} : env_->visuals.rootDepth, window_, c.root(),
                    static_cast<std::int16_t>(area_.x), static_cast<std::int16_t>(area_.y), width, height, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, argb ? env_->visuals.argbVisual : env_->visuals.rootVisual,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                        XCB_CW_COLORMAP | XCB_CW_CURSOR,
                    values);
  env_->panels[window_] = weak_from_this();
  setProperties();
  if (style_.ignoresMouseEvents && env_->features.shape) {
    xcb_shape_rectangles(c, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, window_, 0, 0, 0,
                         nullptr);
  }
  if (isBlack() && env_->features.shape) xcb_shape_select_input(c, window_, 1);
  surface_.attach(window_, area_);
}

void Panel::setProperties() {
  Connection& c = *env_->connection;
  const auto setText = [&](xcb_atom_t property, xcb_atom_t type, std::string_view text) {
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, property, type, 8, static_cast<std::uint32_t>(text.size()),
                        text.data());
  };
  constexpr std::string_view CLASS("dormel\0Dormel\0", 14);
  setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, CLASS);
  setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "Dormel");
  setText(c.atom("_NET_WM_NAME"), c.atom("UTF8_STRING"), "Dormel");
  std::array<char, 256> host{};
  if (gethostname(host.data(), host.size() - 1) == 0) {
    setText(XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, host.data());
  }
  const auto pid = static_cast<std::uint32_t>(getpid());
  xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, c.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1, &pid);
  // A compositor leaves this kind out of overviews.
  const xcb_atom_t type = c.atom("_NET_WM_WINDOW_TYPE_NOTIFICATION");
  xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, c.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &type);
  tellShadow();
}

void Panel::tellShadow() {
  if (!style_.hasShadow) return;
  // Compositors that know of windows with a shadow of their own give them no other one.
  const auto margin = static_cast<std::uint32_t>(std::lround(SHADOW_MARGIN * env_->screens->space().scale));
  const std::uint32_t margins[] = {margin, margin, margin, margin};
  xcb_change_property(*env_->connection, XCB_PROP_MODE_REPLACE, window_, env_->connection->atom("_GTK_FRAME_EXTENTS"),
                      XCB_ATOM_CARDINAL, 32, 4, margins);
}

Rect Panel::frame() const { return frame_; }

PixelRect Panel::areaOf(const Rect& frame) const {
  return env_->screens->space().toPixels(outset(frame, shadowMargin(style_)));
}

void Panel::setFrame(const Rect& frame) {
  frame_ = frame;
  moveTo(areaOf(frame));
  layOutContent();
  env_->connection->flush();
}

void Panel::placeAnew() {
  const PixelRect area = areaOf(frame_);
  if (area != area_) {
    canvas_.endDrag();
    moveTo(area);
  }
  // The scale may be another.
  tellShadow();
  layOutContent();
}

void Panel::moveTo(const PixelRect& area) {
  area_ = area;
  const std::uint32_t values[] = {static_cast<std::uint32_t>(area.x), static_cast<std::uint32_t>(area.y),
                                  static_cast<std::uint32_t>(std::max(1, area.width)),
                                  static_cast<std::uint32_t>(std::max(1, area.height))};
  xcb_configure_window(*env_->connection, window_,
                       XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                       values);
  surface_.setArea(area);
}

void Panel::setContent(std::shared_ptr<View> view) {
  surface_.clearContent();
  canvas_.setView(std::move(view));
}

void Panel::layOutContent() {
  const double scale = env_->screens->space().scale;
  canvas_.fit({area_.width / scale, area_.height / scale}, scale);
}

void Panel::onFrame(const Pixels& pixels, const PixelRect& changed) {
  surface_.updateContent(pixels, changed);
  env_->connection->flush();
}

void Panel::setAlpha(double alpha) {
  static_cast<void>(beginFade());
  setFadedAlpha(alpha);
}

void Panel::setFadedAlpha(double alpha) {
  surface_.setAlpha(alpha);
  env_->connection->flush();
}

void Panel::makeKeyAndOrderFront() {
  orderFront();
  if (style_.canBecomeKey) env_->focus.makeKey(window_);
  settle();
}

void Panel::orderFrontRegardless() {
  orderFront();
  settle();
}

void Panel::settle() {
  // A window that fades in covers nothing yet, and a start waits for nothing before the keyboard is taken.
  if (std::exchange(isMappedUnseen_, false) && surface_.covers()) {
    env_->connection->sync();
  } else {
    env_->connection->flush();
  }
}

void Panel::orderFront() {
  if (isVisible_) {
    env_->stacking.raise(window_, style_.level);
    return;
  }
  const bool fadesWithoutCompositor = isBlack() && alpha() < 1 && !env_->compositor.isRunning();
  if (!fadesWithoutCompositor) {
    env_->desktop.settle();
  } else if (!env_->stacking.hasBlockers()) {
    env_->desktop.want();
  }
  surface_.prepareMap();
  env_->stacking.raise(window_, style_.level);
  xcb_map_window(*env_->connection, window_);
  surface_.finishMap();
  isVisible_ = true;
  isMappedUnseen_ = true;
  canvas_.show();
}

void Panel::orderOut() {
  if (!std::exchange(isVisible_, false)) return;
  env_->focus.resign(window_);
  env_->stacking.remove(window_);
  xcb_unmap_window(*env_->connection, window_);
  surface_.unmapped();
  if (!env_->stacking.hasBlockers()) env_->desktop.drop();
  env_->connection->flush();
  canvas_.hide();
}

void Panel::handle(const xcb_generic_event_t& event) {
  const bool isForged = (event.response_type & 0x80) != 0;  // sent by another program, not by the server
  switch (event.response_type & 0x7f) {
    case XCB_EXPOSE: {
      const auto& e = reinterpret_cast<const xcb_expose_event_t&>(event);
      surface_.expose({e.x, e.y, e.width, e.height});
      break;
    }
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
      if (isForged) break;  // only what is really pressed counts
      onKey(reinterpret_cast<const xcb_key_press_event_t&>(event), (event.response_type & 0x7f) == XCB_KEY_PRESS);
      break;
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE: {
      const auto& e = reinterpret_cast<const xcb_button_press_event_t&>(event);
      const bool isPress = (event.response_type & 0x7f) == XCB_BUTTON_PRESS;
      if (e.detail == MAIN_BUTTON)
        onPointer(isPress ? PointerAction::press : PointerAction::release, e.root_x, e.root_y);
      break;
    }
    case XCB_MOTION_NOTIFY: {
      const auto& e = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
      onPointer(PointerAction::move, e.root_x, e.root_y);
      break;
    }
    case XCB_LEAVE_NOTIFY:
      onLeave(reinterpret_cast<const xcb_leave_notify_event_t&>(event));
      break;
    case XCB_PROPERTY_NOTIFY: {
      const auto& e = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      if (e.atom == env_->connection->atom("_NET_WM_WINDOW_OPACITY") && e.state == XCB_PROPERTY_NEW_VALUE)
        surface_.opacitySet();
      break;
    }
    case XCB_UNMAP_NOTIFY:
      if (isVisible_) putBack();
      break;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& e = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      if (isVisible_ && !canvas_.isDragged() && PixelRect{e.x, e.y, e.width, e.height} != area_) putBack();
      break;
    }
    case XCB_DESTROY_NOTIFY:
      env_->panels.erase(window_);
      env_->stacking.remove(window_);
      env_->focus.resign(window_);
      makeWindow();
      if (isVisible_) putBack();
      break;
    default:
      break;
  }
}

void Panel::shapeChanged(std::uint8_t kind, bool isShaped) {
  if (isShaped) surface_.shapeSet(kind);
}

void Panel::putBack() {
  if (!putBackBudget_.spend()) {
    putBackLater_.ask();
    return;
  }
  moveTo(area_);
  surface_.prepareMap();
  env_->stacking.raise(window_, style_.level);
  xcb_map_window(*env_->connection, window_);
  surface_.finishMap();
  if (style_.canBecomeKey) env_->focus.makeKey(window_);
  env_->connection->flush();
}

void Panel::onKey(const xcb_key_press_event_t& event, bool isPress) {
  const auto key =
      isPress ? env_->keys.press(WINDOW_KEYS, event.detail, env_->numbering.usual().virtualKeyCode(event.detail))
              : env_->keys.release(WINDOW_KEYS, event.detail);
  if (!key || (key->type == EventType::keyDown && env_->keyMonitors.swallow(*key))) return;
  const auto handler = keyHandler_;
  if (handler) handler(*key);
}

void Panel::onLeave(const xcb_leave_notify_event_t& event) {
  if (event.mode == XCB_NOTIFY_MODE_GRAB) {
    // Somebody took the pointer, a drag out of this panel for one: the button's release will not come here, and
    // whatever was pressed is let go without an effect.
    if (!canvas_.isDragged()) onPointer(PointerAction::move, OUTSIDE, OUTSIDE);
    onPointer(PointerAction::release, OUTSIDE, OUTSIDE);
  }
  onPointer(PointerAction::leave, 0, 0);
}

void Panel::onPointer(PointerAction action, int rootX, int rootY) {
  const double scale = env_->screens->space().scale;
  const PixelRect content = surface_.contentArea();
  // From where the panel is to be: events on their way still count from where it was.
  const auto move =
      canvas_.pointer(action, (rootX - area_.x - content.x) / scale, (rootY - area_.y - content.y) / scale);
  if (move) setFrame({frame_.x + move->right, frame_.y - move->down, frame_.width, frame_.height});
}

}  // namespace dormel::x11
