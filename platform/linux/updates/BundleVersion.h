// The numbers of a bundle: "15", "1.4.2". What is newer is decided by CFBundleVersion alone; the short version is for
// people. Any thread.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dormel::updates {

class BundleVersion {
 public:
  /// One to four numbers of at most nine digits with dots between them; nothing for any other text.
  [[nodiscard]] static std::optional<BundleVersion> parse(std::string_view text);

  /// As it was written.
  [[nodiscard]] const std::string& text() const { return text_; }

  /// By the numbers, from the left; a missing one counts as 0, so that "1.0" equals "1".
  friend std::strong_ordering operator<=>(const BundleVersion& a, const BundleVersion& b) {
    return a.numbers_ <=> b.numbers_;
  }
  friend bool operator==(const BundleVersion& a, const BundleVersion& b) { return a.numbers_ == b.numbers_; }

 private:
  std::string text_;
  std::array<std::uint32_t, 4> numbers_{};
};

}  // namespace dormel::updates
