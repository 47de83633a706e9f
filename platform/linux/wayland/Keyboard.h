// The keyboards of all seats: whether their keys come to us, which of them are down, and what is printed on them.
// A compositor tells only who has the keyboard; what happens while somebody else has it is not known here.
// Main thread only.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <vector>

#include "platform/Keyboard.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/display/XkbLabels.h"
#include "platform/linux/wayland/Connection.h"

namespace dormel::wayland {

class Pointer;

class Keyboard : public HardwareKeys {
 public:
  struct Seat {
    Keyboard* owner = nullptr;
    std::uint32_t number = 0;  ///< the registry's
    KeyTracker::Source source = 0;
    Owned<wl_seat> handle;
    Owned<wl_keyboard> keyboard;
    bool isFocused = false;
    std::unique_ptr<CoalescedTimer> forget;
  };

  /// `connection` and `loop` outlive it.
  Keyboard(Connection& connection, EventLoop& loop);

  void arrived(const Connection::Arrival& arrival);
  void departed(std::uint32_t number);

  /// Each key that goes down or up while we have the keyboard; and what was let go while we had not.
  void setOnKey(std::function<void(const KeyEvent&)> onKey) { onKey_ = std::move(onKey); }
  /// The answer of `isHeld` may be another now.
  void setOnFocus(Task onFocus) { onFocus_ = std::move(onFocus); }
  /// Seats came or went.
  void setOnSeats(Task onSeats) { onSeats_ = std::move(onSeats); }
  void setPointer(Pointer* pointer) { pointer_ = pointer; }

  /// Whether every keyboard's keys come to us: some seat has one, and none that has one serves somebody else.
  [[nodiscard]] bool isHeld() const;
  [[nodiscard]] bool isDown(KeyCode keyCode) const override { return tracker_.isHeld(keyCode); }
  [[nodiscard]] const std::list<Seat>& seats() const { return seats_; }
  [[nodiscard]] XkbLabels& labels() { return labels_; }

 private:
  void capable(Seat& seat, std::uint32_t capabilities);
  void deliver(const std::vector<KeyEvent>& events);
  void focus(Seat& seat, bool isFocused);
  void key(Seat& seat, std::uint32_t code, bool isPress);
  [[nodiscard]] KeyCode meaning(std::uint32_t code) const;

  Connection& connection_;
  EventLoop& loop_;
  std::list<Seat> seats_;
  KeyTracker::Source lastSource_ = 0;
  const KeyCodes codes_;
  KeyTracker tracker_;
  XkbLabels labels_;
  Pointer* pointer_ = nullptr;
  std::function<void(const KeyEvent&)> onKey_;
  Task onFocus_;
  Task onSeats_;
};

}  // namespace dormel::wayland
