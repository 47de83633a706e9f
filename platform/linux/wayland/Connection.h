// One connection to a compositor: opening it, what it offers, its events on the main loop, and its end.
// Main thread only, but for `syncWithin`.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/wayland/Proxy.h"

struct wl_display;
struct wl_registry;

namespace dormel::wayland {

/// What the compositor offers of what we use; null what it does not offer.
struct Globals {
  Owned<wl_compositor> compositor;
  Owned<wl_subcompositor> subcompositor;
  Owned<wl_shm> shm;
  Owned<wp_viewporter> viewporter;
  Owned<wp_fractional_scale_manager_v1> fractionalScale;
  Owned<zxdg_output_manager_v1> outputManager;
  Owned<zwlr_layer_shell_v1> layerShell;
  Owned<zwp_keyboard_shortcuts_inhibit_manager_v1> shortcutsInhibit;
  Owned<zwp_pointer_constraints_v1> pointerConstraints;
  Owned<ext_session_lock_manager_v1> sessionLock;
};

class Connection {
 public:
  /// Something that comes and goes while we are connected: an output, a seat.
  struct Arrival {
    std::uint32_t number;
    std::string interface;
    std::uint32_t version;
  };

  /// Null when there is no such compositor or it refuses. `name` is as in $WAYLAND_DISPLAY, and empty means that.
  [[nodiscard]] static std::unique_ptr<Connection> open(const std::string& name = {});
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  [[nodiscard]] wl_display* display() const { return display_; }
  [[nodiscard]] wl_registry* registry() const { return registry_; }
  [[nodiscard]] const Globals& globals() const { return globals_; }
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] int descriptor() const;
  /// False once the compositor is gone, or has thrown us out.
  [[nodiscard]] bool isAlive() const;

  /// Called for each output and each seat, those that are there already at once, and when one goes.
  void setOnArrival(std::function<void(const Arrival&)> onArrival, std::function<void(std::uint32_t)> onDeparture);
  /// Delivers events on the loop from now on and sends what was asked for before each wait. `onLost` is called once,
  /// when the connection has ended.
  void startPumping(EventLoop& loop, Task onLost);

  /// Returns when the compositor has carried out everything sent before; its events are delivered meanwhile.
  void roundtrip();
  /// The same where nobody may wait for a compositor that hangs: gives up at the limit.
  void settle(std::chrono::milliseconds limit);
  /// For the last moments of a process: delivers nothing, gives up at the limit, from any thread. False where it gave
  /// up.
  bool syncWithin(std::chrono::milliseconds limit);
  void flush();

 private:
  explicit Connection(wl_display* display, std::string name);
  void announced(std::uint32_t number, const char* interface, std::uint32_t version);
  void withdrawn(std::uint32_t number);
  void read();
  void drain();
  void checkLost();

  wl_display* display_;
  wl_registry* registry_ = nullptr;
  std::string name_;
  Globals globals_;
  std::vector<Arrival> arrivals_;
  std::function<void(const Arrival&)> onArrival_;
  std::function<void(std::uint32_t)> onDeparture_;
  Task onLost_;
  EventLoop::Watch readable_;
  EventLoop::Watch beforeWaiting_;
};

}  // namespace dormel::wayland
