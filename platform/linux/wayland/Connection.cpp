#include "platform/linux/wayland/Connection.h"

#include <poll.h>
#include <sys/epoll.h>
#include <wayland-client-core.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

using Clock = std::chrono::steady_clock;

/// Binds `global` when the announcement is about it; the newest version that both sides know.
template <typename Object>
void take(Owned<Object>& global, const wl_interface& wanted, wl_registry* registry, std::uint32_t number,
          std::string_view interface, std::uint32_t version, std::uint32_t newest) {
  if (global || interface != wanted.name) return;
  global.reset(static_cast<Object*>(wl_registry_bind(registry, number, &wanted, std::min(version, newest))));
}

}  // namespace

std::unique_ptr<Connection> Connection::open(const std::string& name) {
  wl_display* display = wl_display_connect(name.empty() ? nullptr : name.c_str());
  if (display == nullptr) return nullptr;
  std::unique_ptr<Connection> connection(new Connection(display, name));
  connection->roundtrip();
  return connection->isAlive() ? std::move(connection) : nullptr;
}

Connection::Connection(wl_display* display, std::string name) : display_(display), name_(std::move(name)) {
  static constexpr wl_registry_listener LISTENER{
      [](void* self, wl_registry*, std::uint32_t number, const char* interface, std::uint32_t version) {
        static_cast<Connection*>(self)->announced(number, interface, version);
      },
      [](void* self, wl_registry*, std::uint32_t number) { static_cast<Connection*>(self)->withdrawn(number); }};
  registry_ = wl_display_get_registry(display_);
  wl_registry_add_listener(registry_, &LISTENER, this);
}

Connection::~Connection() {
  readable_.reset();
  beforeWaiting_.reset();
  globals_ = {};
  wl_registry_destroy(registry_);
  wl_display_flush(display_);
  wl_display_disconnect(display_);
}

void Connection::announced(std::uint32_t number, const char* interface, std::uint32_t version) {
  const std::string_view name = interface;
  if (name == wl_output_interface.name || name == wl_seat_interface.name) {
    arrivals_.push_back({number, interface, version});
    if (onArrival_) onArrival_(arrivals_.back());
    return;
  }
  const auto bind = [&](auto& global, const wl_interface& wanted, std::uint32_t newest) {
    take(global, wanted, registry_, number, name, version, newest);
  };
  bind(globals_.compositor, wl_compositor_interface, 4);
  bind(globals_.subcompositor, wl_subcompositor_interface, 1);
  bind(globals_.shm, wl_shm_interface, 1);
  bind(globals_.viewporter, wp_viewporter_interface, 1);
  bind(globals_.fractionalScale, wp_fractional_scale_manager_v1_interface, 1);
  bind(globals_.outputManager, zxdg_output_manager_v1_interface, 3);
  bind(globals_.layerShell, zwlr_layer_shell_v1_interface, 4);
  bind(globals_.shortcutsInhibit, zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1);
  bind(globals_.pointerConstraints, zwp_pointer_constraints_v1_interface, 1);
  bind(globals_.sessionLock, ext_session_lock_manager_v1_interface, 1);
}

void Connection::withdrawn(std::uint32_t number) {
  if (std::erase_if(arrivals_, [&](const Arrival& arrival) { return arrival.number == number; }) == 0) return;
  if (onDeparture_) onDeparture_(number);
}

int Connection::descriptor() const { return wl_display_get_fd(display_); }

bool Connection::isAlive() const { return wl_display_get_error(display_) == 0; }

void Connection::setOnArrival(std::function<void(const Arrival&)> onArrival,
                              std::function<void(std::uint32_t)> onDeparture) {
  onArrival_ = std::move(onArrival);
  onDeparture_ = std::move(onDeparture);
  const auto present = arrivals_;
  for (const Arrival& arrival : present) onArrival_(arrival);
}

void Connection::startPumping(EventLoop& loop, Task onLost) {
  onLost_ = std::move(onLost);
  readable_ = loop.watch(descriptor(), EPOLLIN, [this](std::uint32_t) { read(); });
  beforeWaiting_ = loop.beforeWaiting([this] { drain(); });
}

void Connection::read() {
  while (wl_display_prepare_read(display_) != 0) {
    if (wl_display_dispatch_pending(display_) < 0) return checkLost();
  }
  if (wl_display_read_events(display_) == 0 || errno == EAGAIN) wl_display_dispatch_pending(display_);
  checkLost();
}

void Connection::drain() {
  // Waiting for an answer reads events as well; the socket is then silent although events are there.
  wl_display_dispatch_pending(display_);
  flush();
  checkLost();
}

void Connection::flush() {
  // A compositor that does not read fills the socket. What is left goes at the next occasion, which is the next wait.
  wl_display_flush(display_);
}

void Connection::checkLost() {
  if (isAlive()) return;
  readable_.reset();  // a dead socket is readable for ever
  beforeWaiting_.reset();
  if (const Task onLost = std::exchange(onLost_, {})) onLost();
}

void Connection::roundtrip() { wl_display_roundtrip(display_); }

void Connection::settle(std::chrono::milliseconds limit) {
  static_cast<void>(syncWithin(limit));
  wl_display_dispatch_pending(display_);
  flush();
}

bool Connection::syncWithin(std::chrono::milliseconds limit) {
  const auto deadline = Clock::now() + limit;
  wl_event_queue* queue = wl_display_create_queue(display_);
  auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display_));
  if (queue == nullptr || wrapper == nullptr) return false;  // the process is about to end
  wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
  bool isDone = false;
  static constexpr wl_callback_listener LISTENER{
      [](void* done, wl_callback*, std::uint32_t) { *static_cast<bool*>(done) = true; }};
  wl_callback* callback = wl_display_sync(wrapper);
  wl_proxy_wrapper_destroy(wrapper);
  wl_callback_add_listener(callback, &LISTENER, &isDone);
  while (!isDone && isAlive()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) break;
    if (wl_display_prepare_read_queue(display_, queue) != 0) {
      wl_display_dispatch_queue_pending(display_, queue);
      continue;
    }
    wl_display_flush(display_);
    pollfd entry{descriptor(), POLLIN, 0};
    if (::poll(&entry, 1, static_cast<int>(left)) > 0) {
      wl_display_read_events(display_);
    } else {
      wl_display_cancel_read(display_);
    }
    wl_display_dispatch_queue_pending(display_, queue);
  }
  wl_callback_destroy(callback);
  wl_event_queue_destroy(queue);
  return isDone;
}

}  // namespace dormel::wayland
