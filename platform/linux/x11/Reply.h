// Ownership of what xcb allocates: replies, errors and events are malloc'ed and belong to the caller. And questions
// that are on their way: an answer costs a round trip only for the first of those that were sent together.
#pragma once

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

namespace dormel::x11 {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }  // NOLINT: xcb's own contract
};

/// Null when the server answered with an error or is gone.
template <typename T>
using Reply = std::unique_ptr<T, FreeDeleter>;

template <typename T>
[[nodiscard]] Reply<T> owned(T* reply) {
  return Reply<T>(reply);
}

/// What a reply function (xcb_get_geometry_reply and the like) takes and gives.
template <typename Function>
struct Answered;
template <typename T, typename Sent>
struct Answered<T* (*)(xcb_connection_t*, Sent, xcb_generic_error_t**)> {
  using Cookie = Sent;
  using Type = T;
};

/// A question that was sent and whose answer nobody has waited for yet. Named after its reply function:
/// `Asked<&xcb_get_geometry_reply>`. The connection outlives it. Main thread only.
template <auto FETCH>
class Asked {
 public:
  using Cookie = typename Answered<decltype(FETCH)>::Cookie;
  using Type = typename Answered<decltype(FETCH)>::Type;

  Asked() = default;
  Asked(xcb_connection_t* connection, Cookie cookie) : connection_(connection), cookie_(cookie) {}
  Asked(Asked&& other) noexcept : connection_(other.connection_), cookie_(std::exchange(other.cookie_, std::nullopt)) {}
  Asked& operator=(Asked&& other) noexcept {
    std::swap(connection_, other.connection_);
    std::swap(cookie_, other.cookie_);
    return *this;
  }
  Asked(const Asked&) = delete;
  Asked& operator=(const Asked&) = delete;
  ~Asked() {
    if (cookie_) xcb_discard_reply(connection_, cookie_->sequence);
  }

  /// Whether an answer is still to be taken.
  [[nodiscard]] explicit operator bool() const { return cookie_.has_value(); }
  /// Waits for the answer. Null also when nothing was asked, or it was taken before.
  [[nodiscard]] Reply<Type> take() {
    if (!cookie_) return nullptr;
    return owned(FETCH(connection_, *std::exchange(cookie_, std::nullopt), nullptr));
  }
  /// The answer if it has come, without waiting. Null as with `take`, and as long as it has not come.
  [[nodiscard]] Reply<Type> takeIfHere() {
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (!cookie_ || xcb_poll_for_reply(connection_, cookie_->sequence, &reply, &error) == 0) return nullptr;
    cookie_.reset();
    static_cast<void>(owned(error));
    return owned(static_cast<Type*>(reply));
  }

 private:
  xcb_connection_t* connection_ = nullptr;
  std::optional<Cookie> cookie_;
};

}  // namespace dormel::x11
