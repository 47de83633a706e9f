// A private X server for one test, and what a test does to it from outside: monitors, keys, other programs.
#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/x11/Connection.h"

namespace dormel::x11::test {

/// The main loop that the connections of all tests live on.
EventLoop& loop();
/// Runs it until `condition` holds; false after `milliseconds`.
bool until(const std::function<bool()>& condition, int milliseconds = 3000);
/// Runs it for a while, for what must not happen meanwhile.
void spin(int milliseconds);

/// A child process, killed and reaped at the latest with this object.
class Child {
 public:
  Child(const std::vector<std::string>& command, const std::string& display);
  explicit Child(pid_t pid) : pid_(pid) {}
  Child(Child&& other) noexcept;
  ~Child() { kill(); }
  void kill();

 private:
  pid_t pid_;
};

class XServer {
 public:
  /// Xorg on the dummy driver: sixteen outputs, none of them on.
  [[nodiscard]] static std::unique_ptr<XServer> xorg(const std::vector<std::string>& arguments = {});
  /// Xorg with 800 x 600 on DUMMY0 and 640 x 480 right of it on DUMMY1.
  [[nodiscard]] static std::unique_ptr<XServer> withTwoMonitors();
  ~XServer();

  [[nodiscard]] const std::string& display() const { return display_; }
  /// Ends the server as a crash would.
  void crash();

  // Monitors, by `xrandr`. Names are those of outputs; geometry as "800x600+0+0".
  void plug(const std::string& output, int width, int height, int x, int y);
  /// One raw request, as `xrandr` never sends it: nothing beside it is changed, and nobody holds the server meanwhile.
  /// Puts what the output shows at another place; without a place, turns it off.
  void configure(const std::string& output, std::optional<std::pair<int, int>> place);
  /// Runs a tool to its end on this display; true when it succeeded.
  bool run(const std::vector<std::string>& command) const;

  /// A client of its own on this server, not pumped.
  [[nodiscard]] std::shared_ptr<Connection> client() const { return Connection::open(loop(), display_); }

  // Keys and buttons through XTEST, by the kernel's codes.
  /// From now on those of that master keyboard.
  void typeOn(const std::string& keyboard);
  void press(int evdev);
  void release(int evdev);
  void movePointer(int x, int y);
  void button(bool down);
  [[nodiscard]] std::uint32_t pixel(int x, int y);

 private:
  XServer(std::string display, Child process);
  void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);

  std::string display_;
  Child process_;
  std::shared_ptr<Connection> hand_;
};

/// Another program: one mapped window with the input focus that counts the keys it gets.
class Witness {
 public:
  explicit Witness(const XServer& server, std::uint32_t colour = 0x336699);
  ~Witness() {
    xcb_destroy_window(*connection_, window_);
    connection_->sync();
  }

  [[nodiscard]] int keysSeen();
  void focus();
  bool grabKeyboard();
  /// All top-level windows but its own.
  [[nodiscard]] std::vector<xcb_window_t> others();
  [[nodiscard]] Connection& connection() { return *connection_; }
  [[nodiscard]] xcb_window_t window() const { return window_; }

 private:
  std::shared_ptr<Connection> connection_;
  xcb_window_t window_;
  int keys_ = 0;
};

/// A display in front of a server that answers one question about an extension with the answer for another one of
/// the same length of name: what is called XInputExtension is then not there, or XWAYLAND is.
class Masquerade {
 public:
  Masquerade(const XServer& server, std::string asked, std::string answered);
  ~Masquerade();
  [[nodiscard]] const std::string& display() const { return display_; }

 private:
  void serve(int listener, const std::string& path);
  std::string display_;
  std::string socket_;
  std::string asked_;
  std::string answered_;
  int stop_[2] = {-1, -1};
  std::thread thread_;
};

/// Looks at a few places of the two monitors as fast as it can, from a thread of its own, for a colour that must not
/// show.
class Camera {
 public:
  Camera(const XServer& server, std::uint32_t colour);
  ~Camera() { stop(); }
  void stop();
  [[nodiscard]] int pictures() const { return pictures_; }
  [[nodiscard]] int sightings() const { return sightings_; }

 private:
  std::atomic<bool> isStopped_ = false;
  std::atomic<int> pictures_ = 0;
  std::atomic<int> sightings_ = 0;
  std::thread thread_;
};

/// The colour at that place of the root, 0xRRGGBB.
[[nodiscard]] std::uint32_t pixelAt(Connection& connection, int x, int y);

}  // namespace dormel::x11::test
