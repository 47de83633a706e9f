// What the presentation options mean on X while a lock is up: the server's own ways out are dead keys, every
// pointer and every further keyboard is ours, and the server does nothing else with keys. The desktop's shortcuts die
// with the keyboard grab of the event tap. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/x11/AccessXSuspension.h"
#include "platform/linux/x11/InputGrab.h"
#include "platform/linux/x11/SecondaryDeviceGrabs.h"
#include "platform/linux/x11/ServerHotkeys.h"

namespace dormel::x11 {

class Lockdown {
 public:
  /// Undoes what a process that died while locked left behind, unless another process of ours is locking now.
  Lockdown(std::shared_ptr<Connection> connection, const ServerFeatures& features,
           std::shared_ptr<AccessXSuspension> care);
  ~Lockdown();
  Lockdown(const Lockdown&) = delete;
  Lockdown& operator=(const Lockdown&) = delete;

  /// On: at once, and again with every keyboard or keymap that comes. Off: everything is given back.
  void set(bool on);

  /// The last moments of a process whose main thread may be stuck, or at work on the very same things: ends the
  /// connection that `client` is a resource of, whatever it still has to say, and gives back over one of its own what
  /// would stay (the keymaps' actions, what is locked, the input focus to `focus`). Any thread.
  static void bequeath(const std::string& display, std::uint32_t client, xcb_window_t focus);
  /// A resource of this lockdown's connection.
  [[nodiscard]] std::uint32_t client() const { return client_; }

 private:
  void handle(const xcb_generic_event_t& event);
  void look();

  std::shared_ptr<Connection> connection_;
  ServerHotkeys keys_;
  std::shared_ptr<AccessXSuspension> care_;
  AccessXSuspension::Hold careHold_;
  InputGrab pointer_;
  SecondaryDeviceGrabs secondaryDeviceGrabs_;
  ServerFeatures features_;
  xcb_window_t marker_;
  xcb_pixmap_t client_;  ///< no window: other programs see those, and could destroy it
  xcb_atom_t selection_;
  bool isOn_ = false;
  Subscription subscription_;
  CoalescedTimer check_;
};

}  // namespace dormel::x11
