#include "platform/linux/wayland/Keyboard.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>

#include "platform/linux/wayland/Pointer.h"
#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

/// Keys of the kernel and of keymaps: the same with eight added.
constexpr std::uint32_t XKB_OFFSET = 8;
/// A keymap is some 60 KB; what says that it is much larger is none.
constexpr std::uint32_t LARGEST_KEYMAP = 16U << 20;
/// Whoever had the keyboard taken away and has it back by then has held the keys all the while.
constexpr int FORGET_MILLISECONDS = 250;

/// The first `size` bytes, or as many as there are. Read, not mapped: a file that is shorter than it is said to be must
/// not end the process.
std::string contentsOf(int file, std::uint32_t size) {
  std::string text(std::min(size, LARGEST_KEYMAP), '\0');
  std::size_t got = 0;
  while (got < text.size()) {
    const ssize_t more = ::pread(file, text.data() + got, text.size() - got, static_cast<off_t>(got));
    if (more < 0 && errno == EINTR) continue;
    if (more <= 0) break;
    got += static_cast<std::size_t>(more);
  }
  text.resize(got);
  return text;
}

}  // namespace

Keyboard::Keyboard(Connection& connection, EventLoop& loop) : connection_(connection), loop_(loop) {}

void Keyboard::arrived(const Connection::Arrival& arrival) {
  Seat& seat = seats_.emplace_back();
  seat.owner = this;
  seat.number = arrival.number;
  seat.source = ++lastSource_;
  seat.handle.reset(static_cast<wl_seat*>(wl_registry_bind(connection_.registry(), arrival.number, &wl_seat_interface,
                                                           std::min(arrival.version, std::uint32_t{5}))));
  seat.forget = std::make_unique<CoalescedTimer>(
      loop_, [this, source = seat.source] { deliver(tracker_.releaseAll(source)); }, FORGET_MILLISECONDS);
  static constexpr wl_seat_listener LISTENER{[](void* data, wl_seat*, std::uint32_t capabilities) {
                                               auto& told = *static_cast<Seat*>(data);
                                               told.owner->capable(told, capabilities);
                                             },
                                             [](void*, wl_seat*, const char*) {}};
  wl_seat_add_listener(seat.handle.get(), &LISTENER, &seat);
}

void Keyboard::departed(std::uint32_t number) {
  const auto seat = std::find_if(seats_.begin(), seats_.end(), [&](const Seat& one) { return one.number == number; });
  if (seat == seats_.end()) return;
  const auto source = seat->source;
  if (pointer_ != nullptr) pointer_->forget(seat->handle.get());
  seats_.erase(seat);
  deliver(tracker_.releaseAll(source));
  if (onSeats_) onSeats_();
  if (onFocus_) onFocus_();
}

void Keyboard::capable(Seat& seat, std::uint32_t capabilities) {
  if (pointer_ != nullptr) pointer_->offered(seat.handle.get(), (capabilities & WL_SEAT_CAPABILITY_POINTER) != 0);
  const bool hasKeyboard = (capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0;
  if (hasKeyboard == (seat.keyboard != nullptr)) return;
  if (!hasKeyboard) {
    seat.keyboard.reset();
    seat.isFocused = false;
    deliver(tracker_.releaseAll(seat.source));
  } else {
    seat.keyboard.reset(wl_seat_get_keyboard(seat.handle.get()));
    static constexpr wl_keyboard_listener LISTENER{
        [](void* data, wl_keyboard*, std::uint32_t format, int file, std::uint32_t size) {
          auto& labels = static_cast<Seat*>(data)->owner->labels_;
          if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1) labels.setKeymap(contentsOf(file, size));
          ::close(file);
        },
        [](void* data, wl_keyboard*, std::uint32_t, wl_surface*, wl_array* keys) {
          auto& told = *static_cast<Seat*>(data);
          std::map<std::uint32_t, KeyCode> held;
          const auto* const first = static_cast<const std::uint32_t*>(keys->data);
          for (std::size_t i = 0; i < keys->size / sizeof *first; ++i) {
            held.emplace(first[i] + XKB_OFFSET, told.owner->meaning(first[i] + XKB_OFFSET));
          }
          told.forget->forget();
          told.owner->deliver(told.owner->tracker_.reconcile(told.source, held));
          told.owner->focus(told, true);
        },
        [](void* data, wl_keyboard*, std::uint32_t, wl_surface*) {
          auto& told = *static_cast<Seat*>(data);
          told.forget->ask();
          told.owner->focus(told, false);
        },
        [](void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t key, std::uint32_t state) {
          auto& told = *static_cast<Seat*>(data);
          told.owner->key(told, key + XKB_OFFSET, state == WL_KEYBOARD_KEY_STATE_PRESSED);
        },
        [](void* data, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t group) {
          static_cast<Seat*>(data)->owner->labels_.setLayout(group);
        },
        [](void*, wl_keyboard*, int, int) {}};
    wl_keyboard_add_listener(seat.keyboard.get(), &LISTENER, &seat);
  }
  if (onSeats_) onSeats_();
  if (onFocus_) onFocus_();
}

bool Keyboard::isHeld() const {
  const auto has = [](const Seat& seat) { return seat.keyboard != nullptr; };
  return std::any_of(seats_.begin(), seats_.end(), has) &&
         std::all_of(seats_.begin(), seats_.end(), [&](const Seat& seat) { return !has(seat) || seat.isFocused; });
}

void Keyboard::focus(Seat& seat, bool isFocused) {
  seat.isFocused = isFocused;
  if (onFocus_) onFocus_();
}

KeyCode Keyboard::meaning(std::uint32_t code) const {
  constexpr std::uint32_t KNOWN = 256;
  constexpr std::uint32_t OTHERS = 0x4000;  // keys of no meaning to us, told from each other all the same
  return code < KNOWN ? codes_.virtualKeyCode(static_cast<std::uint8_t>(code))
                      : static_cast<KeyCode>(OTHERS + code % OTHERS);
}

void Keyboard::key(Seat& seat, std::uint32_t code, bool isPress) {
  const auto event = isPress ? tracker_.press(seat.source, code, meaning(code)) : tracker_.release(seat.source, code);
  if (event) deliver({*event});
}

void Keyboard::deliver(const std::vector<KeyEvent>& events) {
  for (const KeyEvent& event : events) {
    if (onKey_) onKey_(event);
  }
}

}  // namespace dormel::wayland
