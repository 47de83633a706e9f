#include "platform/linux/updates/BundleVersion.h"

#include <charconv>

namespace dormel::updates {
namespace {

constexpr std::size_t MOST_DIGITS = 9;

}  // namespace

std::optional<BundleVersion> BundleVersion::parse(std::string_view text) {
  BundleVersion version;
  version.text_ = text;
  for (std::uint32_t& number : version.numbers_) {
    const std::string_view digits = text.substr(0, text.find('.'));
    if (digits.empty() || digits.size() > MOST_DIGITS) return {};
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) return {};
    if (digits.size() == text.size()) return version;
    text.remove_prefix(digits.size() + 1);
  }
  return {};
}

}  // namespace dormel::updates
