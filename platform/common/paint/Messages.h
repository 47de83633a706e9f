// What the process that shows pictures (the guard) and the one that paints them (the painter) tell each other. One
// message is one datagram: a tag and fixed fields. Both directions are decoded with every length checked; a message
// that is not exactly one of these is none. Numbers are checked for what they mean by whoever acts on them.
//
// The guard sends whole scenes, never differences, at most one unanswered for each canvas: a painter that was started
// again knows everything after one message, and a painter that stands still fills no queue.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/Geometry.h"
#include "platform/View.h"
#include "platform/common/Canvas.h"

namespace dormel::paint {

/// An update may have put another painter into the bundle than the guard that runs was built with.
inline constexpr std::uint32_t VERSION = 1;
/// The painter's end of the socket, in the painter.
inline constexpr int PAINTER_DESCRIPTOR = 3;
/// No message is longer.
inline constexpr std::size_t LONGEST_MESSAGE = 16384;
/// No picture is larger, in pixels each way.
inline constexpr int LONGEST_SIDE = 8192;

// From the guard.

/// How a canvas is to be from now on. Answered by Done with the same serial once the picture shows it.
struct Scene {
  std::uint32_t canvas = 0;
  std::uint32_t serial = 0;
  /// With another one the painter makes new memory for it, whole frames first.
  std::uint32_t revision = 0;
  ViewKind kind = ViewKind::blockerOverlay;
  bool showing = false;
  Size size;  ///< points
  double scale = 1;
  std::string state;  ///< as PaintedView::encodedState
};
struct Close {
  std::uint32_t canvas = 0;
};
/// As Canvas::pointer.
struct Pointer {
  std::uint32_t canvas = 0;
  PointerAction action = PointerAction::move;
  double x = 0;
  double y = 0;
};
/// The painter may paint into that frame again.
struct Release {
  std::uint32_t canvas = 0;
  std::uint32_t revision = 0;
  std::uint32_t frame = 0;
};
/// Answered by Pong.
struct Ping {
  std::uint32_t serial = 0;
};
using Order = std::variant<Scene, Close, Pointer, Release, Ping>;

// From the painter.

/// The first message of every painter.
struct Hello {
  std::uint32_t version = 0;
};
/// Comes with a descriptor: sealed memory of `frames` pictures of that size, one after the other, without gaps, in the
/// form of Canvas's pixels. Takes the place of the canvas's memory before. Size and revision are the last scene's.
struct Memory {
  std::uint32_t canvas = 0;
  std::uint32_t revision = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t frames = 0;
};
/// A frame is whole; it differs from the one before in `changed`. It is the guard's until it releases it.
struct Frame {
  std::uint32_t canvas = 0;
  std::uint32_t revision = 0;
  std::uint32_t frame = 0;
  PixelRect changed;
};
struct Done {
  std::uint32_t canvas = 0;
  std::uint32_t serial = 0;
};
/// Where a press is taken, in points from the top left.
struct Areas {
  std::uint32_t canvas = 0;
  std::vector<Rect> areas;
};
/// As PaintedView::act.
struct Act {
  std::uint32_t canvas = 0;
  std::uint32_t action = 0;
};
struct Pong {
  std::uint32_t serial = 0;
};
using Answer = std::variant<Hello, Memory, Frame, Done, Areas, Act, Pong>;

[[nodiscard]] std::string encoded(const Order& order);
[[nodiscard]] std::string encoded(const Answer& answer);
[[nodiscard]] std::optional<Order> decodedOrder(std::string_view bytes);
[[nodiscard]] std::optional<Answer> decodedAnswer(std::string_view bytes);

/// Pixels for that many points, at least one; lengths that are whole but for rounding do not grow.
[[nodiscard]] int pixelLength(double points, double scale);

}  // namespace dormel::paint
