#include "platform/linux/x11/Connection.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <chrono>
#include <utility>

namespace dormel::x11 {
namespace {

constexpr std::uint32_t PROPERTY_WORDS = 1U << 20;

/// How long events are handled without a look at timers.
constexpr std::chrono::milliseconds TURN{5};

}  // namespace

std::shared_ptr<Connection> Connection::open(EventLoop& loop, const std::string& display) {
  return openFor(&loop, display);
}

std::shared_ptr<Connection> Connection::open(const std::string& display) { return openFor(nullptr, display); }

std::shared_ptr<Connection> Connection::openFor(EventLoop* loop, const std::string& display) {
  int screenNumber = 0;
  xcb_connection_t* xcb = xcb_connect(display.empty() ? nullptr : display.c_str(), &screenNumber);
  if (xcb_connection_has_error(xcb) != 0) {
    xcb_disconnect(xcb);
    return nullptr;
  }
  return std::shared_ptr<Connection>(new Connection(xcb, screenNumber, loop, display));
}

bool Connection::answers(const std::string& display) {
  const int errors = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
  const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (errors >= 0 && nothing >= 0) ::dup2(nothing, STDERR_FILENO);
  const bool isOpen = open(display) != nullptr;
  if (errors >= 0) {
    ::dup2(errors, STDERR_FILENO);
    ::close(errors);
  }
  if (nothing >= 0) ::close(nothing);
  return isOpen;
}

Connection::Connection(xcb_connection_t* xcb, int screenNumber, EventLoop* loop, std::string display)
    : xcb_(xcb), screenNumber_(screenNumber), loop_(loop), display_(std::move(display)) {
  auto roots = xcb_setup_roots_iterator(xcb_get_setup(xcb_));
  for (int i = 0; i < screenNumber && roots.rem > 1; ++i) xcb_screen_next(&roots);
  screen_ = roots.data;
}

Connection::~Connection() {
  stopPumping();
  xcb_disconnect(xcb_);
}

void Connection::startPumping() {
  if (drain_) return;
  socket_ = loop().watch(xcb_get_file_descriptor(xcb_), EPOLLIN, [this](std::uint32_t) { readSocket(); });
  // Waiting for a reply reads events as well; the socket is then silent although events are there.
  drain_ = loop().beforeWaiting([this] { drainQueue(); });
}

void Connection::stopPumping() {
  socket_.reset();
  drain_.reset();
}

void Connection::readSocket() {
  handleEvents([this] { return xcb_poll_for_event(xcb_); });
}

void Connection::drainQueue() {
  handleEvents([this] {
    // Flushing may read, and handling an event may ask: round until nothing is left to do.
    if (xcb_generic_event_t* event = xcb_poll_for_queued_event(xcb_)) return event;
    xcb_flush(xcb_);
    return xcb_poll_for_queued_event(xcb_);
  });
}

void Connection::handleEvents(const std::function<xcb_generic_event_t*()>& next) {
  const auto self = shared_from_this();  // a handler may let go of the connection
  const auto end = std::chrono::steady_clock::now() + TURN;
  while (const auto event = owned(next())) {
    dispatch(*event);
    if (std::chrono::steady_clock::now() < end) continue;
    // Somebody sends faster than this can be handled: a stuck key, a script. The challenge's clock goes on all the
    // same. The rest is drained before the next wait, which must not last.
    if (loop_ != nullptr) loop_->async([] {});
    break;
  }
  xcb_flush(xcb_);
  checkLost();
}

void Connection::dispatch(const xcb_generic_event_t& event) {
  // Errors of requests without a reply: a window that went away meanwhile, mostly. Nothing depends on them.
  if (event.response_type == 0) return;
  handlers_.call(event);
}

void Connection::checkLost() {
  if (isAlive() || lostReported_) return;
  lostReported_ = true;
  socket_.reset();  // a dead one is readable for ever
  if (onLost_) onLost_();
}

Subscription Connection::subscribe(Handler handler) { return handlers_.add(std::move(handler)); }

void Connection::selectOnRoot(std::uint32_t events) {
  rootEvents_ |= events;
  xcb_change_window_attributes(xcb_, root(), XCB_CW_EVENT_MASK, &rootEvents_);
}

void Connection::sync() {
  static_cast<void>(owned(xcb_get_input_focus_reply(xcb_, xcb_get_input_focus(xcb_), nullptr)));
}

void Connection::expectAtoms(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (atoms_.contains(name)) continue;
    atoms_[name].asked = xcb_intern_atom(xcb_, 0, static_cast<std::uint16_t>(name.size()), name.data());
  }
}

xcb_atom_t Connection::atom(const std::string& name) {
  expectAtoms({name});
  Atom& atom = atoms_.at(name);
  if (!atom.known) {
    const auto reply = owned(xcb_intern_atom_reply(xcb_, atom.asked, nullptr));
    atom.known = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
  }
  return *atom.known;
}

Asked<&xcb_get_property_reply> Connection::askProperty(xcb_window_t window, xcb_atom_t property) {
  return {xcb_, xcb_get_property(xcb_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, PROPERTY_WORDS)};
}

std::vector<std::uint32_t> Connection::items(Asked<&xcb_get_property_reply> property) {
  const auto reply = property.take();
  if (!reply || reply->format != 32) return {};
  const auto* items = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {items, items + reply->value_len};
}

std::string Connection::text(Asked<&xcb_get_property_reply> property) {
  const auto reply = property.take();
  if (!reply || reply->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

}  // namespace dormel::x11
