// One connection to an X server: opening it, its events on the main loop, and its end.
// Main thread only. Whoever subscribed sees every event in the order of the stream.
#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/common/HandlerList.h"
#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {

/// Ends the subscription when the last copy goes.
using Subscription = std::shared_ptr<const void>;

class Connection : public std::enable_shared_from_this<Connection> {
 public:
  using Handler = std::function<void(const xcb_generic_event_t&)>;

  /// Null when there is no such server or it refuses. An empty name means $DISPLAY. `loop` outlives the connection.
  [[nodiscard]] static std::shared_ptr<Connection> open(EventLoop& loop, const std::string& display = {});
  /// For requests and replies alone: there is no loop for its events. Any thread, but always the same one.
  [[nodiscard]] static std::shared_ptr<Connection> open(const std::string& display = {});
  /// Whether a server can be connected to. Says nothing on standard error, where libxcb repeats a refusal each time;
  /// what another thread says there in the same moment is lost with it.
  [[nodiscard]] static bool answers(const std::string& display = {});
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  // NOLINTNEXTLINE: every xcb call takes it
  operator xcb_connection_t*() const { return xcb_; }
  [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
  [[nodiscard]] xcb_window_t root() const { return screen_->root; }
  [[nodiscard]] int screenNumber() const { return screenNumber_; }
  /// The name it was opened with; empty for $DISPLAY.
  [[nodiscard]] const std::string& display() const { return display_; }
  /// False once the server is gone; every request is then ignored and every reply null.
  [[nodiscard]] bool isAlive() const { return xcb_connection_has_error(xcb_) == 0; }

  /// The loop it was opened for; there must be one.
  [[nodiscard]] EventLoop& loop() const { return *loop_; }

  /// Delivers events on the loop from now on; timers get their turn however many there are. Requests still buffered are
  /// sent whenever the loop is about to wait. Without pumping, events queue up.
  void startPumping();
  void stopPumping();

  [[nodiscard]] Subscription subscribe(Handler handler);
  /// Called once, from the run loop, when the server is gone.
  void setOnLost(Task onLost) { onLost_ = std::move(onLost); }

  /// Asks for more kinds of events of the root window. A client has one set of them per window, so everybody on this
  /// connection adds to it here.
  void selectOnRoot(std::uint32_t events);

  void flush() { xcb_flush(xcb_); }
  /// Returns when the server has carried out everything sent before.
  void sync();

  // What nearly everybody needs of the protocol.
  /// Known without asking from the second time on.
  [[nodiscard]] xcb_atom_t atom(const std::string& name);
  /// Asks for atoms that will be needed, without waiting.
  void expectAtoms(const std::vector<std::string>& names);
  /// A property's value, on its way.
  [[nodiscard]] Asked<&xcb_get_property_reply> askProperty(xcb_window_t window, xcb_atom_t property);
  [[nodiscard]] Asked<&xcb_get_property_reply> askProperty(xcb_window_t window, const std::string& name) {
    return askProperty(window, atom(name));
  }
  /// Its 32-bit items; empty when absent or of another format.
  [[nodiscard]] static std::vector<std::uint32_t> items(Asked<&xcb_get_property_reply> property);
  [[nodiscard]] static std::string text(Asked<&xcb_get_property_reply> property);
  /// Asks for 32-bit items and waits for them.
  [[nodiscard]] std::vector<std::uint32_t> property32(xcb_window_t window, const std::string& name) {
    return items(askProperty(window, name));
  }
  [[nodiscard]] std::uint32_t newId() { return xcb_generate_id(xcb_); }

 private:
  [[nodiscard]] static std::shared_ptr<Connection> openFor(EventLoop* loop, const std::string& display);
  Connection(xcb_connection_t* xcb, int screenNumber, EventLoop* loop, std::string display);
  void readSocket();
  void drainQueue();
  void handleEvents(const std::function<xcb_generic_event_t*()>& next);
  void dispatch(const xcb_generic_event_t& event);
  void checkLost();

  struct Atom {
    xcb_intern_atom_cookie_t asked;
    std::optional<xcb_atom_t> known;
  };

  xcb_connection_t* xcb_;
  xcb_screen_t* screen_ = nullptr;
  int screenNumber_;
  EventLoop* loop_;
  std::string display_;
  HandlerList<const xcb_generic_event_t&> handlers_;
  std::uint32_t rootEvents_ = 0;
  std::map<std::string, Atom> atoms_;  ///< they stay the same as long as the server lives
  Task onLost_;
  bool lostReported_ = false;
  EventLoop::Watch socket_;
  EventLoop::Watch drain_;
};

}  // namespace dormel::x11
