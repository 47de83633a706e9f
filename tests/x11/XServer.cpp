#include "tests/x11/XServer.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/randr.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "platform/linux/x11/Reply.h"

namespace dormel::x11::test {
namespace {

constexpr const char* CONFIGURATION = R"(
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoAddGPU" "false"
  Option "BlankTime" "0"
EndSection
Section "Device"
  Identifier "card"
  Driver "dummy"
  VideoRam 262144
EndSection
Section "Monitor"
  Identifier "wide"
  HorizSync 5-1000
  VertRefresh 5-200
EndSection
Section "Screen"
  Identifier "screen"
  Device "card"
  Monitor "wide"
  DefaultDepth 24
  SubSection "Display"
    Virtual 1024 768
  EndSubSection
EndSection
)";

pid_t spawn(const std::vector<std::string>& command, const std::string& display, int keepOpen = -1) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  const pid_t pid = fork();
  if (pid != 0) return pid;
  if (!display.empty()) setenv("DISPLAY", display.c_str(), 1);
  const int null = open("/dev/null", O_RDWR);
  for (const int fd : {0, 1, 2}) dup2(null, fd);
  if (keepOpen >= 0) fcntl(keepOpen, F_SETFD, 0);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

}  // namespace

EventLoop& loop() {
  static EventLoop mainLoop;
  return mainLoop;
}

bool until(const std::function<bool()>& condition, int milliseconds) {
  bool holds = condition();
  if (holds) return true;
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
  const Timer look = Timer::repeating(loop(), 0.001, [&] {
    holds = condition();
    if (holds || std::chrono::steady_clock::now() > end) loop().stop();
  });
  loop().run();
  return holds;
}

void spin(int milliseconds) {
  until([] { return false; }, milliseconds);
}

Child::Child(const std::vector<std::string>& command, const std::string& display) : pid_(spawn(command, display)) {}
Child::Child(Child&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}

void Child::kill() {
  if (pid_ <= 0) return;
  ::kill(pid_, SIGKILL);
  waitpid(std::exchange(pid_, -1), nullptr, 0);
}

std::unique_ptr<XServer> XServer::xorg(const std::vector<std::string>& arguments) {
  std::string folder = "/tmp/dormel-x11-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no folder for the server");
  const std::string configuration = folder + "/xorg.conf";
  std::ofstream(configuration) << CONFIGURATION;
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  std::vector<std::string> command{"/usr/lib/xorg/Xorg",    "-config",  configuration,   "-displayfd",
                                   std::to_string(ends[1]), "-logfile", folder + "/log", "-seat",
                                   "seat-dormel",           "-noreset", "-nolisten",     "tcp"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  Child process(spawn(command, {}, ends[1]));
  close(ends[1]);
  std::string number;
  char digit = 0;
  while (read(ends[0], &digit, 1) == 1 && digit != '\n') number += digit;
  close(ends[0]);
  const int removed = std::system(("rm -r " + folder).c_str());  // the server has read its file
  if (number.empty() || removed != 0) throw std::runtime_error("the X server did not start");
  return std::unique_ptr<XServer>(new XServer(":" + number, std::move(process)));
}

std::unique_ptr<XServer> XServer::withTwoMonitors() {
  auto server = xorg();
  // Without a real keyboard the server falls back on key codes of old; every desktop has the kernel's.
  server->run({"setxkbmap", "-rules", "evdev", "-model", "pc105", "-layout", "us"});
  server->plug("DUMMY0", 800, 600, 0, 0);
  server->plug("DUMMY1", 640, 480, 800, 0);
  return server;
}

XServer::XServer(std::string display, Child process)
    : display_(std::move(display)), process_(std::move(process)), hand_(Connection::open(display_)) {
  if (!hand_) throw std::runtime_error("the X server refuses");
}

XServer::~XServer() = default;

void XServer::crash() { process_.kill(); }

bool XServer::run(const std::vector<std::string>& command) const {
  int status = 0;
  waitpid(spawn(command, display_), &status, 0);
  return status == 0;
}

void XServer::plug(const std::string& output, int width, int height, int x, int y) {
  const std::string mode = std::to_string(width) + "x" + std::to_string(height);
  const auto text = [](int number) { return std::to_string(number); };
  run({"xrandr", "--newmode", mode, "60.0", text(width), text(width + 48), text(width + 80), text(width + 160),
       text(height), text(height + 3), text(height + 8), text(height + 30)});
  run({"xrandr", "--addmode", output, mode});
  if (!run({"xrandr", "--output", output, "--mode", mode, "--pos", text(x) + "x" + text(y)})) {
    throw std::runtime_error("xrandr --output " + output);
  }
}

void XServer::configure(const std::string& output, std::optional<std::pair<int, int>> place) {
  Connection& c = *hand_;
  const auto all = owned(
      xcb_randr_get_screen_resources_current_reply(c, xcb_randr_get_screen_resources_current(c, c.root()), nullptr));
  const auto* outputs = xcb_randr_get_screen_resources_current_outputs(all.get());
  for (int i = 0; i < xcb_randr_get_screen_resources_current_outputs_length(all.get()); ++i) {
    const auto info = owned(
        xcb_randr_get_output_info_reply(c, xcb_randr_get_output_info(c, outputs[i], all->config_timestamp), nullptr));
    const auto* name = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
    if (output != std::string(name, xcb_randr_get_output_info_name_length(info.get()))) continue;
    const auto crtc =
        owned(xcb_randr_get_crtc_info_reply(c, xcb_randr_get_crtc_info(c, info->crtc, all->config_timestamp), nullptr));
    const auto [x, y] = place.value_or(std::pair(0, 0));
    const auto set = xcb_randr_set_crtc_config(c, info->crtc, XCB_CURRENT_TIME, all->config_timestamp,
                                               static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                               place ? crtc->mode : static_cast<xcb_randr_mode_t>(XCB_NONE),
                                               XCB_RANDR_ROTATION_ROTATE_0, place ? 1 : 0, &outputs[i]);
    const auto reply = owned(xcb_randr_set_crtc_config_reply(c, set, nullptr));
    if (reply && reply->status == XCB_RANDR_SET_CONFIG_SUCCESS) return;
  }
  throw std::runtime_error("cannot configure " + output);
}

void XServer::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
  xcb_test_fake_input(*hand_, type, detail, XCB_CURRENT_TIME, hand_->root(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 0);
  hand_->sync();
}

void XServer::typeOn(const std::string& keyboard) {
  Connection& c = *hand_;
  const auto devices =
      owned(xcb_input_xi_query_device_reply(c, xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL_MASTER), nullptr));
  for (auto it = xcb_input_xi_query_device_infos_iterator(devices.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    const std::string name(xcb_input_xi_device_info_name(it.data),
                           static_cast<std::size_t>(xcb_input_xi_device_info_name_length(it.data)));
    if (name != keyboard) continue;
    xcb_input_xi_set_client_pointer(c, XCB_NONE, it.data->attachment);  // which also chooses XTEST's keyboard
    c.sync();
    return;
  }
  throw std::runtime_error("no keyboard called " + keyboard);
}

void XServer::press(int evdev) { fake(XCB_KEY_PRESS, static_cast<std::uint8_t>(evdev + 8)); }
void XServer::release(int evdev) { fake(XCB_KEY_RELEASE, static_cast<std::uint8_t>(evdev + 8)); }
void XServer::movePointer(int x, int y) { fake(XCB_MOTION_NOTIFY, 0, x, y); }
void XServer::button(bool down) { fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, 1); }

std::uint32_t XServer::pixel(int x, int y) { return pixelAt(*hand_, x, y); }

std::uint32_t pixelAt(Connection& connection, int x, int y) {
  const auto reply =
      owned(xcb_get_image_reply(connection,
                                xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(),
                                              static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1, 1, ~0U),
                                nullptr));
  if (!reply) return 0xdeadbeef;
  const std::uint8_t* bytes = xcb_get_image_data(reply.get());
  return static_cast<std::uint32_t>(bytes[2] << 16 | bytes[1] << 8 | bytes[0]);
}

namespace {

sockaddr_un addressOf(const std::string& display) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ("/tmp/.X11-unix/X" + display.substr(1)).copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

}  // namespace

Masquerade::Masquerade(const XServer& server, std::string asked, std::string answered)
    : asked_(std::move(asked)), answered_(std::move(answered)) {
  display_ = ":" + std::to_string(1000 + std::stoi(server.display().substr(1)));
  const sockaddr_un own = addressOf(display_);
  socket_ = own.sun_path;
  unlink(own.sun_path);
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (bind(listener, reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0 || listen(listener, 4) != 0 ||
      pipe2(stop_, O_CLOEXEC) != 0) {
    throw std::runtime_error("no display to masquerade as");
  }
  thread_ = std::thread([this, listener, real = server.display()] { serve(listener, real); });
}

Masquerade::~Masquerade() {
  close(stop_[1]);
  thread_.join();
  close(stop_[0]);
  unlink(socket_.c_str());
}

void Masquerade::serve(int listener, const std::string& real) {
  std::vector<pollfd> fds{{stop_[0], POLLIN, 0}, {listener, POLLIN, 0}};  // then pairs: client, server
  while (poll(fds.data(), fds.size(), -1) >= 0 && fds[0].revents == 0) {
    for (std::size_t i = 2; i < fds.size(); ++i) {
      if (fds[i].revents == 0) continue;
      const int other = fds[i ^ 1].fd;
      std::string bytes(65536, '\0');
      const ssize_t count = read(fds[i].fd, bytes.data(), bytes.size());
      bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
      if (i % 2 == 0) {
        for (auto at = bytes.find(asked_); at != std::string::npos; at = bytes.find(asked_)) {
          bytes.replace(at, asked_.size(), answered_);
        }
      }
      if (bytes.empty() || send(other, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) {
        for (const std::size_t end : {i, i ^ 1}) {
          shutdown(fds[end].fd, SHUT_RDWR);
          fds[end].events = 0;
          fds[end].fd = -1 - fds[end].fd;  // poll ignores it; closed below
        }
      }
    }
    if ((fds[1].revents & POLLIN) != 0) {
      const sockaddr_un target = addressOf(real);
      const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
      fds.push_back({accept4(listener, nullptr, nullptr, SOCK_CLOEXEC), POLLIN, 0});
      if (connect(server, reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0) break;
      fds.push_back({server, POLLIN, 0});
    }
  }
  for (std::size_t i = 1; i < fds.size(); ++i) close(fds[i].fd >= 0 ? fds[i].fd : -1 - fds[i].fd);
}

Camera::Camera(const XServer& server, std::uint32_t colour)
    : thread_([this, colour, connection = server.client()] {
        while (!isStopped_) {
          for (const int x : {3, 400, 803, 1120}) sightings_ += pixelAt(*connection, x, 200) == colour ? 1 : 0;
          ++pictures_;
        }
      }) {}

void Camera::stop() {
  isStopped_ = true;
  if (thread_.joinable()) thread_.join();
}

Witness::Witness(const XServer& server, std::uint32_t colour)
    : connection_(server.client()), window_(connection_->newId()) {
  const std::uint32_t values[] = {colour, 1, XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE};
  xcb_create_window(*connection_, XCB_COPY_FROM_PARENT, window_, connection_->root(), 0, 0, 2000, 2000, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
  xcb_map_window(*connection_, window_);
  focus();
}

void Witness::focus() {
  xcb_set_input_focus(*connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window_, XCB_CURRENT_TIME);
  connection_->sync();
}

int Witness::keysSeen() {
  connection_->sync();
  while (const auto event = owned(xcb_poll_for_event(*connection_))) {
    const int type = event->response_type & 0x7f;
    if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) ++keys_;
  }
  return keys_;
}

bool Witness::grabKeyboard() {
  const auto reply = owned(xcb_grab_keyboard_reply(
      *connection_,
      xcb_grab_keyboard(*connection_, 0, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
      nullptr));
  return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

std::vector<xcb_window_t> Witness::others() {
  const auto tree =
      owned(xcb_query_tree_reply(*connection_, xcb_query_tree(*connection_, connection_->root()), nullptr));
  const xcb_window_t* const children = xcb_query_tree_children(tree.get());
  std::vector<xcb_window_t> others(children, children + xcb_query_tree_children_length(tree.get()));
  std::erase(others, window_);
  return others;
}

}  // namespace dormel::x11::test
