// The giving side of one drag by the common drag-and-drop protocol, version 5: tells the window under the pointer,
// hears whether it would take a copy, and hands the data over when it asks. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/display/Later.h"
#include "platform/linux/x11/XdndTarget.h"

namespace dormel::x11 {

class XdndSource {
 public:
  /// One form in which the data can be had.
  struct Offer {
    std::string type;  ///< a MIME type
    std::function<std::optional<std::string>()> data;
  };

  /// `window` is ours and outlives this; `offers` are three at most. `onAnswer` is called when the receiver's readiness
  /// changed, `onDone` once after `drop`: whether the receiver took the data.
  XdndSource(std::shared_ptr<Connection> connection, xcb_window_t window, std::vector<Offer> offers,
             xcb_timestamp_t time, Task onAnswer, std::function<void(bool)> onDone);
  XdndSource(const XdndSource&) = delete;
  XdndSource& operator=(const XdndSource&) = delete;
  /// A receiver that was told of the drag is told that it left.
  ~XdndSource();

  /// The pointer is there now, in pixels of the root window.
  void moveTo(int x, int y, xcb_timestamp_t time);
  /// The button was let go.
  void drop(xcb_timestamp_t time);
  [[nodiscard]] bool isAccepted() const { return isAccepted_; }

 private:
  struct Atoms {
    explicit Atoms(Connection& connection);
    xcb_atom_t selection, enter, position, status, leave, drop, finished, actionCopy, targets, timestamp;
  };

  void handle(const xcb_generic_event_t& event);
  void onStatus(const xcb_client_message_event_t& message);
  void onFinished(const xcb_client_message_event_t& message);
  void onRequest(const xcb_selection_request_event_t& request);
  void send(xcb_atom_t type, std::uint32_t b, std::uint32_t c, std::uint32_t d, std::uint32_t e);
  void enter();
  void leave();
  void sendPosition();
  void sendDrop();
  void setAccepted(bool accepted);
  void done(bool taken);

  std::shared_ptr<Connection> connection_;
  xcb_window_t window_;
  std::vector<Offer> offers_;
  std::vector<xcb_atom_t> offerTypes_;
  xcb_timestamp_t startTime_;
  Task onAnswer_;
  std::function<void(bool)> onDone_;
  Atoms atoms_;
  XdndTargetAtoms targetAtoms_;

  XdndTarget target_;
  int x_ = 0;
  int y_ = 0;
  xcb_timestamp_t time_ = 0;
  bool isAwaitingStatus_ = false;
  bool isPositionPending_ = false;
  bool isAccepted_ = false;
  bool isDropping_ = false;  // the button is up
  bool isDropSent_ = false;
  std::optional<PixelRect> quiet_;  // where the receiver's answer stays the same
  Later statusLimit_;
  Later finishLimit_;
  Subscription subscription_;
};

}  // namespace dormel::x11
