#include "platform/common/paint/Messages.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <type_traits>
#include <utility>

#include "platform/common/Bytes.h"

namespace dormel::paint {
namespace {

constexpr std::size_t MOST_AREAS = 64;

// One list of fields for each message, for writing and reading alike.
template <typename M>
auto fields(M& m) {
  using T = std::remove_const_t<M>;
  if constexpr (std::is_same_v<T, Scene>) {
    return std::tie(m.canvas, m.serial, m.revision, m.kind, m.showing, m.size, m.scale, m.state);
  } else if constexpr (std::is_same_v<T, Close>) {
    return std::tie(m.canvas);
  } else if constexpr (std::is_same_v<T, Pointer>) {
    return std::tie(m.canvas, m.action, m.x, m.y);
  } else if constexpr (std::is_same_v<T, Release>) {
    return std::tie(m.canvas, m.revision, m.frame);
  } else if constexpr (std::is_same_v<T, Ping> || std::is_same_v<T, Pong>) {
    return std::tie(m.serial);
  } else if constexpr (std::is_same_v<T, Hello>) {
    return std::tie(m.version);
  } else if constexpr (std::is_same_v<T, Memory>) {
    return std::tie(m.canvas, m.revision, m.width, m.height, m.frames);
  } else if constexpr (std::is_same_v<T, Frame>) {
    return std::tie(m.canvas, m.revision, m.frame, m.changed);
  } else if constexpr (std::is_same_v<T, Done>) {
    return std::tie(m.canvas, m.serial);
  } else if constexpr (std::is_same_v<T, Areas>) {
    return std::tie(m.canvas, m.areas);
  } else {
    static_assert(std::is_same_v<T, Act>);
    return std::tie(m.canvas, m.action);
  }
}

struct Put {
  ByteWriter& to;
  template <typename T>
  void operator()(const T& value) const {
    if constexpr (std::is_enum_v<T>) {
      to.put(static_cast<std::uint8_t>(value));
    } else {
      to.put(value);
    }
  }
  void operator()(const std::string& text) const { to.putText(text); }
  void operator()(const Size& size) const { to.put(size.width).put(size.height); }
  void operator()(const Rect& r) const { to.put(r.x).put(r.y).put(r.width).put(r.height); }
  void operator()(const PixelRect& r) const { to.put(r.x).put(r.y).put(r.width).put(r.height); }
  void operator()(const std::vector<Rect>& areas) const {
    const std::size_t count = std::min(areas.size(), MOST_AREAS);
    to.put(static_cast<std::uint8_t>(count));
    for (std::size_t i = 0; i < count; ++i) (*this)(areas[i]);
  }
};

struct Get {
  ByteReader& from;
  bool& isSound;
  template <typename T>
  void operator()(T& value) const {
    value = from.get<T>();
    if constexpr (std::is_floating_point_v<T>) isSound = isSound && std::isfinite(value);
  }
  void operator()(ViewKind& kind) const { kind = getEnum<ViewKind>(ViewKind::aboutPanel); }
  void operator()(PointerAction& action) const { action = getEnum<PointerAction>(PointerAction::leave); }
  void operator()(std::string& text) const { text = from.getText(LONGEST_MESSAGE); }
  void operator()(Size& size) const { each(size.width, size.height); }
  void operator()(Rect& r) const { each(r.x, r.y, r.width, r.height); }
  void operator()(PixelRect& r) const { each(r.x, r.y, r.width, r.height); }
  void operator()(std::vector<Rect>& areas) const {
    const auto count = from.get<std::uint8_t>();
    isSound = isSound && count <= MOST_AREAS;
    for (int i = 0; isSound && i < count; ++i) (*this)(areas.emplace_back());
  }

 private:
  template <typename... T>
  void each(T&... values) const {
    ((*this)(values), ...);
  }
  template <typename T>
  [[nodiscard]] T getEnum(T last) const {
    const auto value = from.get<std::uint8_t>();
    if (value <= static_cast<std::uint8_t>(last)) return static_cast<T>(value);
    isSound = false;
    return T{};
  }
};

template <typename Message>
std::string encodedMessage(const Message& message) {
  ByteWriter to;
  to.put(static_cast<std::uint8_t>(message.index()));
  std::visit([&](const auto& m) { std::apply([&](const auto&... field) { (Put{to}(field), ...); }, fields(m)); },
             message);
  return to.take();
}

template <typename Message, std::size_t index = 0>
std::optional<Message> decodedMessage(std::size_t tag, ByteReader& from) {
  if constexpr (index < std::variant_size_v<Message>) {
    if (tag != index) return decodedMessage<Message, index + 1>(tag, from);
    std::variant_alternative_t<index, Message> m;
    bool isSound = true;
    std::apply([&](auto&... field) { (Get{from, isSound}(field), ...); }, fields(m));
    if (isSound && from.isExact()) return Message(std::move(m));
  }
  return {};
}

template <typename Message>
std::optional<Message> decoded(std::string_view bytes) {
  ByteReader from(bytes);
  const auto tag = from.get<std::uint8_t>();
  if (!from.isComplete()) return {};
  return decodedMessage<Message>(tag, from);
}

}  // namespace

std::string encoded(const Order& order) { return encodedMessage(order); }
std::string encoded(const Answer& answer) { return encodedMessage(answer); }
std::optional<Order> decodedOrder(std::string_view bytes) { return decoded<Order>(bytes); }
std::optional<Answer> decodedAnswer(std::string_view bytes) { return decoded<Answer>(bytes); }

int pixelLength(double points, double scale) {
  const double pixels = std::ceil(points * scale - 1e-6);
  return static_cast<int>(std::clamp(pixels, 1.0, static_cast<double>(LONGEST_SIDE)));
}

}  // namespace dormel::paint
