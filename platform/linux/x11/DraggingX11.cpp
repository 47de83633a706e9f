#include "platform/linux/x11/DraggingX11.h"

#include <utility>

#include "platform/linux/display/DisplayLink.h"
#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/display/TimingCurves.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

constexpr KeyCode ESCAPE = 53;
constexpr std::uint8_t MAIN_BUTTON = 1;
constexpr Seconds FLIGHT = 0.3;
constexpr Seconds STAY = 3 * DisplayLink::FRAME;
constexpr double ALPHA = 0.82;
constexpr double ALPHA_OVER_RECEIVER = 1;

/// What file managers and everything else that takes files ask for.
constexpr const char* URI_LIST = "text/uri-list";

std::vector<XdndSource::Offer> offersOf(const DragItem& item) {
  std::vector<XdndSource::Offer> offers;
  for (const std::string& type : item.types) {
    if (type != FILE_URL_TYPE) continue;
    offers.push_back({URI_LIST, [provide = item.provide, type]() -> std::optional<std::string> {
                        const auto address = provide(type);
                        return address ? std::optional(*address + "\r\n") : std::nullopt;
                      }});
  }
  return offers;
}

}  // namespace

DraggingX11::DraggingX11(RunLoop& loop, std::shared_ptr<Connection> connection, PanelServer& panels, const Clock& clock)
    : loop_(loop),
      connection_(std::move(connection)),
      panels_(panels),
      clock_(clock),
      followLater_(loop, [this] { follow(); }),
      letGo_(loop, [this] {
        if (session_ && flight_) session_->source.reset();
      }) {}

DraggingX11::~DraggingX11() {
  session_.reset();
  ungrab();
  if (window_ != XCB_NONE) xcb_destroy_window(*connection_, window_);
}

bool DraggingX11::begin(DragItem item, std::function<void(DragOperation)> onEnd) {
  if (!connection_) return false;
  if (session_) {
    if (session_->source) return false;  // its drop is not over yet
    end(DragOperation::none);            // its picture is only on the way home
  }
  Connection& c = *connection_;
  const auto pointer = owned(xcb_query_pointer_reply(c, xcb_query_pointer(c, c.root()), nullptr));
  if (!pointer || (pointer->mask & XCB_BUTTON_MASK_1) == 0) return false;  // the button is up again already
  if (window_ == XCB_NONE) {
    window_ = c.newId();
    const std::uint32_t values[] = {1, XCB_EVENT_MASK_KEY_PRESS};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window_, c.root(), -2, -2, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    subscription_ = c.subscribe([this](const xcb_generic_event_t& event) { handle(event); });
  }
  const xcb_timestamp_t time = panels_.lastPress();
  if (!grab(time)) return false;

  session_ = std::make_unique<Session>();
  Session& s = *session_;
  s.onEnd = std::move(onEnd);
  s.startX = s.x = pointer->root_x;
  s.startY = s.y = pointer->root_y;
  s.time = time;
  s.scale = panels_.scale();
  WindowStyle style;
  style.level = WindowLevel::status;
  style.ignoresMouseEvents = true;
  s.picture = panels_.makeWindow(style, item.frame);
  s.picture->setContent(item.picture);
  s.picture->setAlpha(ALPHA);
  s.picture->orderFrontRegardless();
  s.home = s.picture->frame();
  s.source = std::make_unique<XdndSource>(
      connection_, window_, offersOf(item), time,
      [this] {
        if (!session_ || !session_->source) return;
        session_->picture->setAlpha(session_->source->isAccepted() ? ALPHA_OVER_RECEIVER : ALPHA);
      },
      [this](bool taken) {
        if (taken) {
          end(DragOperation::copy);
        } else {
          flyBack();
        }
      });
  followLater_.ask();
  return true;
}

bool DraggingX11::grab(xcb_timestamp_t time) {
  Connection& c = *connection_;
  xcb_map_window(c, window_);
  const auto pointer = xcb_grab_pointer(
      c, 0, window_, XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_MOTION,
      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, time);
  // For Escape. Where somebody else has the keyboard, the drag goes on without it.
  const auto keyboard = xcb_grab_keyboard(c, 0, window_, time, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
  const auto reply = owned(xcb_grab_pointer_reply(c, pointer, nullptr));
  static_cast<void>(owned(xcb_grab_keyboard_reply(c, keyboard, nullptr)));
  isGrabbed_ = true;
  if (reply && reply->status == XCB_GRAB_STATUS_SUCCESS) return true;
  ungrab();
  return false;
}

void DraggingX11::ungrab() {
  if (!std::exchange(isGrabbed_, false)) return;
  xcb_ungrab_pointer(*connection_, XCB_CURRENT_TIME);
  xcb_ungrab_keyboard(*connection_, XCB_CURRENT_TIME);
  xcb_unmap_window(*connection_, window_);
  connection_->flush();
}

void DraggingX11::handle(const xcb_generic_event_t& event) {
  if (!session_ || !isGrabbed_) return;
  switch (event.response_type & 0x7f) {
    case XCB_MOTION_NOTIFY: {
      const auto& motion = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
      if (motion.event != window_) break;
      session_->x = motion.root_x;
      session_->y = motion.root_y;
      session_->time = motion.time;
      followLater_.ask();
      break;
    }
    case XCB_BUTTON_RELEASE: {
      const auto& release = reinterpret_cast<const xcb_button_release_event_t&>(event);
      if (release.event != window_ || release.detail != MAIN_BUTTON) break;
      session_->x = release.root_x;
      session_->y = release.root_y;
      session_->time = release.time;
      follow();
      ungrab();
      session_->source->drop(release.time);
      break;
    }
    case XCB_KEY_PRESS: {
      const auto& press = reinterpret_cast<const xcb_key_press_event_t&>(event);
      if (press.event == window_ && panels_.keyCode(press.detail) == ESCAPE) flyBack();
      break;
    }
    default:
      break;
  }
}

void DraggingX11::follow() {
  if (!session_ || !isGrabbed_) return;
  Session& s = *session_;
  // By whole pixels from where it was: its size in pixels does not change on the way.
  Rect frame = s.home;
  frame.x += (s.x - s.startX) / s.scale;
  frame.y -= (s.y - s.startY) / s.scale;
  s.picture->setFrame(frame);
  s.source->moveTo(s.x, s.y, s.time);
}

void DraggingX11::flyBack() {
  ungrab();
  if (!session_) return;
  session_->picture->setAlpha(ALPHA);
  session_->flownFrom = session_->picture->frame();
  session_->flyingSince = clock_.uptime();
  if (session_->flownFrom == session_->home) session_->flyingSince -= FLIGHT;  // a mere click
  flight_ = Timer::repeating(loop_, DisplayLink::FRAME, [this] { flyBackStep(); });
  letGo_.ask();  // the source itself may be the one that is calling
}

void DraggingX11::flyBackStep() {
  if (!session_) {
    flight_.invalidate();
    return;
  }
  Session& s = *session_;
  const double t = (clock_.uptime() - s.flyingSince) / FLIGHT;
  if (t >= 1) {
    end(DragOperation::none);
    return;
  }
  const double progress = eased(TimingCurve::easeInOut, t);
  Rect frame = s.flownFrom;
  frame.x += (s.home.x - frame.x) * progress;
  frame.y += (s.home.y - frame.y) * progress;
  s.picture->setFrame(frame);
}

void DraggingX11::end(DragOperation operation) {
  flight_.invalidate();
  ungrab();
  // Out of whatever is calling: the source, or the picture's own event.
  std::shared_ptr<Session> ended(std::exchange(session_, nullptr).release());
  if (!ended) return;
  loop_.async([ended, operation, &loop = loop_] {
    ended->source.reset();
    if (ended->onEnd) ended->onEnd(operation);
    if (operation == DragOperation::none) {
      // What was dragged is drawn in its place again; the picture goes when that is surely to be seen.
      loop.asyncAfter(STAY, [ended] { ended->picture->orderOut(); });
    }
  });
}

}  // namespace dormel::x11
