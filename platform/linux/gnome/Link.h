// The connection to the shell's extension: whole messages in both directions (PROTOCOL.md), descriptors on the way
// there. Main thread only, but for `releaseNow`.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::gnome {

using Message = nlohmann::json;

constexpr int PROTOCOL = 1;

/// Whether the environment speaks of a Wayland session of GNOME Shell.
[[nodiscard]] bool isSession();

/// Where the extension of this user's session listens, and the list of executables that it answers.
[[nodiscard]] std::string socketPath();
[[nodiscard]] std::string programsPath();

/// Makes sure that this executable stands in the list. Called before the first connection of a process.
void putIntoList();

class Link {
 public:
  /// Null where nobody answers as an extension of our protocol within a second. `hello` is its answer.
  [[nodiscard]] static std::unique_ptr<Link> open(Message& hello);
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  ~Link();

  /// From now on messages come and go from the loop, which outlives this. `onMessage` is given the kind and the body;
  /// `onLost` comes once, in a turn of its own, and may destroy this.
  void start(EventLoop& loop, std::function<void(const std::string&, const Message&)> onMessage, Task onLost);

  /// Goes out in the order of the calls, before the loop waits. `descriptor` is duplicated.
  void say(const std::string& kind, const Message& body, int descriptor = -1);

  /// Sends "release" past everything that waits, for a process that ends now. Any thread.
  void releaseNow() const;

 private:
  struct Outgoing {
    std::string bytes;
    posix::FileDescriptor descriptor;  ///< goes with the last byte
    std::size_t sent = 0;
  };
  explicit Link(posix::FileDescriptor socket) : socket_(std::move(socket)) {}
  void flush();
  void receive();
  bool sendSome(Outgoing& message) const;
  void lose();
  /// Whole messages in what has come so far; false when the peer talks nonsense.
  bool take(const std::function<void(const std::string&, const Message&)>& onMessage);

  posix::FileDescriptor socket_;
  EventLoop* loop_ = nullptr;
  EventLoop::Watch watch_;
  EventLoop::Watch flushing_;
  bool isWaitingToWrite_ = false;
  std::deque<Outgoing> queue_;
  std::string received_;
  std::function<void(const std::string&, const Message&)> onMessage_;
  std::shared_ptr<Task> onLost_;
};

}  // namespace dormel::gnome
