#include "platform/linux/x11/XdndSource.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace dormel::x11 {
namespace {

constexpr int STATUS_LIMIT_MILLISECONDS = 2000;
constexpr int FINISH_LIMIT_MILLISECONDS = 10000;
constexpr std::uint32_t VERSION_SHIFT = 24;
constexpr std::uint32_t ACCEPTS = 1;
constexpr std::uint32_t WANTS_EVERY_POSITION = 2;

std::uint32_t packed(int high, int low) {
  return (static_cast<std::uint32_t>(high) << 16U) | (static_cast<std::uint32_t>(low) & 0xffffU);
}

}  // namespace

XdndSource::Atoms::Atoms(Connection& connection) {
  const auto atoms = connection.atoms({"XdndSelection", "XdndEnter", "XdndPosition", "XdndStatus", "XdndLeave",
                                       "XdndDrop", "XdndFinished", "XdndActionCopy", "TARGETS", "TIMESTAMP"});
  auto next = atoms.begin();
  for (xcb_atom_t* atom :
       {&selection, &enter, &position, &status, &leave, &drop, &finished, &actionCopy, &targets, &timestamp}) {
    *atom = *next++;
  }
}

XdndSource::XdndSource(std::shared_ptr<Connection> connection, xcb_window_t window, std::vector<Offer> offers,
                       xcb_timestamp_t time, Task onAnswer, std::function<void(bool)> onDone)
    : connection_(std::move(connection)),
      window_(window),
      offers_(std::move(offers)),
      startTime_(time),
      onAnswer_(std::move(onAnswer)),
      onDone_(std::move(onDone)),
      atoms_(*connection_),
      targetAtoms_(*connection_),
      statusLimit_(
          connection_->loop(),
          [this] {
            if (isAwaitingStatus_) done(false);
          },
          STATUS_LIMIT_MILLISECONDS),
      finishLimit_(
          connection_->loop(), [this] { done(false); }, FINISH_LIMIT_MILLISECONDS) {
  std::vector<std::string> names;
  for (const Offer& offer : offers_) names.push_back(offer.type);
  offerTypes_ = connection_->atoms(names);
  xcb_set_selection_owner(*connection_, window_, atoms_.selection, startTime_);
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

XdndSource::~XdndSource() {
  if (!isDropSent_) leave();
  xcb_set_selection_owner(*connection_, XCB_NONE, atoms_.selection, startTime_);
  connection_->flush();
}

void XdndSource::send(xcb_atom_t type, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t e) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = target_.window;
  message.type = type;
  const std::uint32_t data[] = {window_, b, c, d, e};
  std::copy(std::begin(data), std::end(data), std::begin(message.data.data32));
  xcb_send_event(*connection_, 0, target_.receiver, 0, reinterpret_cast<const char*>(&message));
  connection_->flush();
}

void XdndSource::enter() {
  if (target_.window == XCB_NONE) return;
  const auto type = [this](std::size_t i) { return i < offerTypes_.size() ? offerTypes_[i] : xcb_atom_t{0}; };
  send(atoms_.enter, target_.version << VERSION_SHIFT, type(0), type(1), type(2));
}

void XdndSource::leave() {
  if (target_.window != XCB_NONE) send(atoms_.leave, 0, 0, 0, 0);
  target_ = {};
  isAwaitingStatus_ = isPositionPending_ = false;
  quiet_.reset();
  setAccepted(false);
}

void XdndSource::moveTo(int x, int y, xcb_timestamp_t time) {
  if (isDropping_) return;
  x_ = x;
  y_ = y;
  time_ = time;
  const XdndTarget found = findXdndTarget(*connection_, targetAtoms_, x, y);
  if (found != target_) {
    leave();
    target_ = found;
    enter();
  }
  if (target_.window == XCB_NONE) return;
  if (isAwaitingStatus_) {
    isPositionPending_ = true;  // one question at a time; the newest place is asked for next
    return;
  }
  const bool isQuiet =
      quiet_ && x >= quiet_->x && y >= quiet_->y && x < quiet_->x + quiet_->width && y < quiet_->y + quiet_->height;
  if (!isQuiet) sendPosition();
}

void XdndSource::sendPosition() {
  isAwaitingStatus_ = true;
  isPositionPending_ = false;
  send(atoms_.position, 0, packed(x_, y_), time_, atoms_.actionCopy);
}

void XdndSource::drop(xcb_timestamp_t time) {
  if (isDropping_) return;
  isDropping_ = true;
  time_ = time;
  if (isAwaitingStatus_) {
    statusLimit_.ask();
  } else {
    sendDrop();
  }
}

void XdndSource::sendDrop() {
  if (!isAccepted_) {
    done(false);
    return;
  }
  isDropSent_ = true;
  send(atoms_.drop, 0, time_, 0, 0);
  finishLimit_.ask();
}

void XdndSource::setAccepted(bool accepted) {
  if (std::exchange(isAccepted_, accepted) != accepted && onAnswer_) onAnswer_();
}

void XdndSource::done(bool taken) {
  if (!taken && !isDropSent_) leave();
  if (const auto told = std::exchange(onDone_, nullptr)) told(taken);
}

void XdndSource::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      // An answer of a window that the pointer has left is no answer.
      if (message.window != window_ || message.format != 32 || target_.window == XCB_NONE ||
          message.data.data32[0] != target_.window) {
        break;
      }
      if (message.type == atoms_.status) onStatus(message);
      if (message.type == atoms_.finished) onFinished(message);
      break;
    }
    case XCB_SELECTION_REQUEST: {
      const auto& request = reinterpret_cast<const xcb_selection_request_event_t&>(event);
      if (request.owner == window_ && request.selection == atoms_.selection) onRequest(request);
      break;
    }
    default:
      break;
  }
}

void XdndSource::onStatus(const xcb_client_message_event_t& message) {
  if (!isAwaitingStatus_) return;
  isAwaitingStatus_ = false;
  const auto& data = message.data.data32;
  quiet_.reset();
  if ((data[1] & WANTS_EVERY_POSITION) == 0) {
    const auto high = [](std::uint32_t both) { return static_cast<int>(both >> 16U); };
    const auto low = [](std::uint32_t both) { return static_cast<int>(both & 0xffffU); };
    quiet_ = PixelRect{high(data[2]), low(data[2]), high(data[3]), low(data[3])};
  }
  // Nothing but a copy is offered: one who would move the program away does not get it.
  setAccepted((data[1] & ACCEPTS) != 0 && data[4] == atoms_.actionCopy);
  if (isDropping_) {
    sendDrop();
  } else if (isPositionPending_) {
    sendPosition();
  }
}

void XdndSource::onFinished(const xcb_client_message_event_t& message) {
  if (!isDropSent_) return;
  constexpr std::uint32_t FIRST_THAT_TELLS = 5;
  done(target_.version < FIRST_THAT_TELLS || (message.data.data32[1] & ACCEPTS) != 0);
}

void XdndSource::onRequest(const xcb_selection_request_event_t& request) {
  Connection& c = *connection_;
  const xcb_atom_t property = request.property != XCB_NONE ? request.property : request.target;  // an old client's way
  const auto put = [&](xcb_atom_t type, std::uint8_t format, std::size_t length, const void* data) {
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, property, type, format,
                        static_cast<std::uint32_t>(length), data);
    return true;
  };
  bool isAnswered = false;
  if (request.target == atoms_.targets) {
    std::vector<xcb_atom_t> all{atoms_.targets, atoms_.timestamp};
    all.insert(all.end(), offerTypes_.begin(), offerTypes_.end());
    isAnswered = put(XCB_ATOM_ATOM, 32, all.size(), all.data());
  } else if (request.target == atoms_.timestamp) {
    isAnswered = put(XCB_ATOM_INTEGER, 32, 1, &startTime_);
  } else {
    for (std::size_t i = 0; i < offers_.size() && !isAnswered; ++i) {
      if (request.target != offerTypes_[i]) continue;
      const auto data = offers_[i].data();
      if (data) isAnswered = put(offerTypes_[i], 8, data->size(), data->data());
    }
  }
  xcb_selection_notify_event_t answer{};
  answer.response_type = XCB_SELECTION_NOTIFY;
  answer.time = request.time;
  answer.requestor = request.requestor;
  answer.selection = request.selection;
  answer.target = request.target;
  answer.property = isAnswered ? property : static_cast<xcb_atom_t>(XCB_NONE);
  xcb_send_event(c, 0, request.requestor, 0, reinterpret_cast<const char*>(&answer));
  c.flush();
}

}  // namespace dormel::x11
