// What the presentation options mean on X while a lock is up: the server's own ways out are dead keys, every
// pointer and every further keyboard is ours, and the server delays no key. The desktop's shortcuts die with the
// keyboard grab of the event tap. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/display/Later.h"
#include "platform/linux/x11/KeyActions.h"
#include "platform/linux/x11/OtherHands.h"
#include "platform/linux/x11/PointerGrab.h"
#include "platform/linux/x11/TypingAids.h"

namespace dormel::x11 {

class Lockdown {
 public:
  /// Undoes what a process that died while locked left behind, unless another process of ours is locking now.
  Lockdown(std::shared_ptr<Connection> connection, const ServerFeatures& features);
  ~Lockdown();
  Lockdown(const Lockdown&) = delete;
  Lockdown& operator=(const Lockdown&) = delete;

  /// On: at once, and again with every keyboard or keymap that comes. Off: everything is given back.
  void set(bool on);

  /// Gives back what belongs to the server (the keymaps' actions; everything else ends with the connection), over
  /// a connection of its own: for the last moments of a process whose main thread may be stuck. Any thread.
  static void giveBackKeys(const std::string& display);

 private:
  void handle(const xcb_generic_event_t& event);
  void look();

  std::shared_ptr<Connection> connection_;
  KeyActions keys_;
  TypingAids aids_;
  PointerGrab pointer_;
  OtherHands otherHands_;
  ServerFeatures features_;
  xcb_window_t marker_;
  xcb_atom_t selection_;
  bool isOn_ = false;
  Subscription subscription_;
  Later check_;
};

}  // namespace dormel::x11
