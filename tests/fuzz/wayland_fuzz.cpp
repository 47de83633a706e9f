// What a compositor sends: any events in any order to any of the objects that a locked program has, with any keymaps,
// sizes and scales. It is bad input at most: the connection may end, the process may not.
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>
#include <wayland-client-core.h>

#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "overlay/BlockerOverlayView.h"
#include "platform/linux/wayland/Protocols.h"
#include "platform/linux/wayland/WaylandPlatform.h"
#include "platform/sim/SimMachine.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/sim/FakeSession.h"

namespace {

using namespace dormel;

/// In the order of their numbers in the registry, from 1.
constexpr std::array GLOBALS{&wl_compositor_interface,
                             &wl_subcompositor_interface,
                             &wl_shm_interface,
                             &wl_seat_interface,
                             &wl_output_interface,
                             &wl_output_interface,
                             &wp_viewporter_interface,
                             &wp_fractional_scale_manager_v1_interface,
                             &zxdg_output_manager_v1_interface,
                             &zwlr_layer_shell_v1_interface,
                             &zwp_keyboard_shortcuts_inhibit_manager_v1_interface,
                             &zwp_pointer_constraints_v1_interface,
                             &ext_session_lock_manager_v1_interface};

using Words = std::vector<std::uint32_t>;

/// The kinds of a message's arguments: its signature without the versions and marks in it.
std::string kinds(const wl_message& message) {
  std::string letters = message.signature;
  std::erase_if(letters, [](char letter) { return std::strchr("iufsonah", letter) == nullptr; });
  return letters;
}

void addBytes(Words& words, std::string_view bytes, std::size_t terminators) {
  words.push_back(static_cast<std::uint32_t>(bytes.size() + terminators));
  const std::size_t first = words.size();
  words.resize(first + (bytes.size() + terminators + 3) / 4);
  if (!bytes.empty()) std::memcpy(&words[first], bytes.data(), bytes.size());
}

/// The other end of the connection, in a thread of its own: it answers what a connection needs to come about, and sends
/// the events of the input from then on.
class Compositor {
 public:
  explicit Compositor(int socket) : socket_(socket) {}

  void serve(std::string_view script) {
    while (!isScriptDue_ && listen(500)) {
    }
    for (int messages = 0; messages < 64 && send(script); ++messages) listen(0);
    while (listen(50)) {
    }
    ::close(socket_);
  }

 private:
  struct Object {
    std::uint32_t id;
    const wl_interface* kind;
  };

  /// Takes what comes by then. False at the end, or when nothing came.
  bool listen(int milliseconds) {
    pollfd entry{socket_, POLLIN, 0};
    if (::poll(&entry, 1, milliseconds) <= 0) return false;
    std::array<char, 4096> bytes{};
    // No room for the files of its memory: the kernel closes them.
    const ssize_t got = ::recv(socket_, bytes.data(), bytes.size(), 0);
    if (got <= 0) return false;
    in_.append(bytes.data(), static_cast<std::size_t>(got));
    for (std::array<std::uint32_t, 2> head{}; in_.size() >= sizeof head;) {
      std::memcpy(head.data(), in_.data(), sizeof head);
      const std::size_t size = head[1] >> 16U;
      if (size < sizeof head || in_.size() < size) break;
      Words words((size - sizeof head) / 4);
      if (!words.empty()) std::memcpy(words.data(), in_.data() + sizeof head, words.size() * 4);
      hear(head[0], static_cast<int>(head[1] & 0xFFFFU), words);
      in_.erase(0, size);
    }
    return true;
  }

  void hear(std::uint32_t id, int request, const Words& words) {
    if (id == 1 && request == 0) {  // sync: the first ends the list of what there is
      event(words[0], 0, {0});
      event(1, 1, {words[0]});
      isScriptDue_ = ++syncs_ >= 2;
    } else if (id == 1) {
      registry_ = words[0];
      for (std::size_t i = 0; i < GLOBALS.size(); ++i) {
        Words global{static_cast<std::uint32_t>(i + 1)};
        addBytes(global, GLOBALS.at(i)->name, 1);
        global.push_back(4);
        event(registry_, 0, global);
      }
    } else if (id == registry_) {
      objects_.push_back({words.back(), GLOBALS.at((words[0] - 1) % GLOBALS.size())});
    } else {
      const auto object = std::find_if(objects_.begin(), objects_.end(), [&](const Object& o) { return o.id == id; });
      if (object == objects_.end() || request >= object->kind->method_count) return;
      const wl_message& message = object->kind->methods[request];
      // What makes an object names it first.
      if (kinds(message).starts_with('n') && !words.empty()) objects_.push_back({words[0], message.types[0]});
    }
  }

  void event(std::uint32_t id, std::uint32_t number, const Words& words, int file = -1) {
    Words message{id, static_cast<std::uint32_t>((words.size() + 2) * 4) << 16U | number};
    message.insert(message.end(), words.begin(), words.end());
    iovec part{message.data(), message.size() * 4};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> rights{};
    if (file >= 0) {
      header.msg_control = rights.data();
      header.msg_controllen = rights.size();
      cmsghdr* const one = CMSG_FIRSTHDR(&header);
      one->cmsg_level = SOL_SOCKET;
      one->cmsg_type = SCM_RIGHTS;
      one->cmsg_len = CMSG_LEN(sizeof file);
      std::memcpy(CMSG_DATA(one), &file, sizeof file);
    }
    static_cast<void>(!::sendmsg(socket_, &header, MSG_NOSIGNAL | MSG_DONTWAIT));
  }

  /// The next event of the script: which object, which event, what it carries. False at the script's end.
  bool send(std::string_view& script) {
    if (script.size() < 2 || objects_.empty()) return false;
    const auto byte = [&script] {
      const auto value = static_cast<unsigned char>(script.empty() ? 0 : script[0]);
      script.remove_prefix(script.empty() ? 0 : 1);
      return value;
    };
    const Object object = objects_[byte() % objects_.size()];
    if (object.kind->event_count == 0) return true;
    const std::uint32_t number = byte() % static_cast<unsigned>(object.kind->event_count);
    const wl_message& message = object.kind->events[number];
    const std::string letters = kinds(message);
    Words words;
    int file = -1;
    for (std::size_t i = 0; i < letters.size(); ++i) {
      const unsigned value = byte();
      if (letters[i] == 'o') {
        words.push_back(some(message.types[i], value));
      } else if (std::strchr("sah", letters[i]) == nullptr) {
        constexpr std::array<std::uint32_t, 6> EDGES{0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 1U << 24U};
        words.push_back(value < 200 ? value * (value < 100 ? 1U : 20U) : EDGES.at(value % EDGES.size()));
      } else {
        const std::string_view bytes = script.substr(0, value);
        script.remove_prefix(bytes.size());
        if (letters[i] == 'h') {
          file = ::memfd_create("keymap", MFD_CLOEXEC);
          static_cast<void>(!::write(file, bytes.data(), bytes.size()));
        } else {
          addBytes(words, letters[i] == 's' ? bytes.substr(0, bytes.find('\0')) : bytes, letters[i] == 's' ? 1 : 0);
        }
      }
    }
    event(object.id, number, words, file);
    if (file >= 0) ::close(file);
    return true;
  }

  [[nodiscard]] std::uint32_t some(const wl_interface* kind, unsigned which) const {
    std::vector<std::uint32_t> found;
    for (const Object& object : objects_) {
      if (object.kind == kind) found.push_back(object.id);
    }
    return found.empty() ? 0 : found[which % found.size()];
  }

  int socket_;
  std::string in_;
  std::uint32_t registry_ = 0;
  std::vector<Object> objects_;
  int syncs_ = 0;
  bool isScriptDue_ = false;
};

/// One colour at the size that is asked for, up to that of a large screen.
class OneColour : public Canvas, public CanvasFactory {
 public:
  [[nodiscard]] std::unique_ptr<Canvas> make(std::shared_ptr<View> /*view*/) override {
    return std::make_unique<OneColour>();
  }
  [[nodiscard]] Size fittingSize() const override { return {300, 200}; }
  void resize(const Size& size, double scale) override {
    const double width = std::ceil(size.width * scale);
    const double height = std::ceil(size.height * scale);
    fuzz::require(width >= 0 && height >= 0, "a picture has a size");
    if (width * height < 1 || width * height > 1 << 20) return;
    pixels_.assign(static_cast<std::size_t>(width * height), 0xFF808080);
    picture_ = {pixels_.data(), static_cast<int>(width), static_cast<int>(height), static_cast<int>(width)};
    setShowing(true);
  }
  void setOnFrame(std::function<void(const Pixels&, const PixelRect&)> onFrame) override {
    onFrame_ = std::move(onFrame);
  }
  void setShowing(bool /*showing*/) override {
    if (onFrame_ && !pixels_.empty()) onFrame_(picture_, {0, 0, picture_.width, picture_.height});
  }
  bool pointer(PointerAction /*action*/, double /*x*/, double /*y*/) override { return false; }

 private:
  std::vector<std::uint32_t> pixels_;
  Pixels picture_{};
  std::function<void(const Pixels&, const PixelRect&)> onFrame_;
};

/// What the program shows of a night, as far as the compositor is concerned: black panels, the keyboard, a pill.
void live(std::unique_ptr<wayland::Connection> connection, SimMachine& machine) {
  EventLoop loop;
  OneColour canvases;
  wayland::WaylandPlatform platform(std::move(connection), "/dev/null/mark", loop, canvases, machine.clock);
  platform.setOnLost([] {});
  const auto view = BlockerOverlayView::create(std::make_shared<FakeSession>());
  std::vector<std::shared_ptr<Window>> windows;
  const auto show = [&](const Rect& frame, bool isBlack) {
    WindowStyle style;
    style.level = WindowLevel::screenSaver;
    style.background = isBlack ? WindowBackground::black : WindowBackground::clear;
    style.canBecomeKey = isBlack;
    windows.push_back(platform.windows().makeWindow(style, frame));
    windows.back()->setContent(view);
    windows.back()->makeKeyAndOrderFront();
  };
  show({0, 0, 1920, 1080}, true);
  const auto tap = platform.eventTaps().create([](const KeyEvent&) { return TapVerdict::swallow; });
  const auto source = tap->makeRunLoopSource();
  tap->enable(true);
  platform.setLockdown(true);
  for (int turn = 0; turn < 24; ++turn) {
    loop.dispatchPending();
    machine.advance(0.05);
    for (const Screen& screen : platform.screens().all()) {
      fuzz::require(screen.frame.width >= 1 && screen.frame.height >= 1, "a screen has a size");
      if (windows.size() < 4) show(screen.frame, windows.size() != 2);
    }
    static_cast<void>(platform.keyboardLayout().translate(0));
    if (turn == 16) windows.front()->setAlpha(0.5);
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
  windows.clear();
  platform.setLockdown(false);
  platform.restoreAtExit(false);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  wl_log_set_handler_client([](const char*, va_list) {});
  SimMachine machine;
  machine.journal.setEnabled(false);
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) return 0;
  std::thread server([&] { Compositor(ends[1]).serve(fuzz::text(data, size)); });
  ::setenv("WAYLAND_SOCKET", std::to_string(ends[0]).c_str(), 1);
  if (auto connection = wayland::Connection::open()) live(std::move(connection), machine);
  server.join();
  return 0;
}
