// Plain values as bytes and back, for two processes of one machine: fixed widths, the machine's own byte order, texts
// with their length before them. Reading never goes beyond the end: after the first value that is not there, everything
// reads as zero and `isComplete` says no.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

namespace dormel {

class ByteWriter {
 public:
  template <typename T>
  ByteWriter& put(T value) {
    static_assert(std::is_arithmetic_v<T>);
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    return *this;
  }
  ByteWriter& putText(std::string_view text) {
    put(static_cast<std::uint32_t>(text.size()));
    bytes_.append(text);
    return *this;
  }
  [[nodiscard]] std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

class ByteReader {
 public:
  /// `bytes` outlives it.
  explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

  template <typename T>
  [[nodiscard]] T get() {
    static_assert(std::is_arithmetic_v<T>);
    T value{};
    if constexpr (std::is_same_v<T, bool>) {
      value = get<std::uint8_t>() != 0;
    } else if (const std::string_view bytes = next(sizeof value); !bytes.empty()) {
      std::memcpy(&value, bytes.data(), sizeof value);
    }
    return value;
  }
  /// Part of what is being read. A longer one than `longest` counts as not there.
  [[nodiscard]] std::string_view getText(std::size_t longest) {
    const auto length = get<std::uint32_t>();
    if (length > longest) isShort_ = true;
    return next(length);
  }
  /// Everything that was read was there.
  [[nodiscard]] bool isComplete() const { return !isShort_; }
  /// And nothing is left.
  [[nodiscard]] bool isExact() const { return !isShort_ && rest_.empty(); }

 private:
  std::string_view next(std::size_t length) {
    if (isShort_ || length > rest_.size()) {
      isShort_ = true;
      return {};
    }
    const std::string_view bytes = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return bytes;
  }

  std::string_view rest_;
  bool isShort_ = false;
};

}  // namespace dormel
