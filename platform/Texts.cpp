#include "platform/Texts.h"

#include "platform/Platform.h"

namespace dormel {
namespace {

bool hasTexts() { return platformGeneration() != 0; }

}  // namespace

std::string filledIn(std::string_view text, std::initializer_list<std::string_view> values) {
  std::string filled;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPlace = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
    const std::size_t value = isPlace ? static_cast<std::size_t>(text[i + 1] - '1') : values.size();
    if (value < values.size()) {
      filled += values.begin()[value];
      ++i;
    } else {
      filled += text[i];
    }
  }
  return filled;
}

std::string translate(std::string_view english, std::initializer_list<std::string_view> values) {
  return filledIn(hasTexts() ? platform().texts.translated(english) : std::string(english), values);
}

std::string translatePlural(std::string_view one, std::string_view many, int count) {
  const std::string text =
      hasTexts() ? platform().texts.translated(one, many, count) : std::string(count == 1 ? one : many);
  return filledIn(text, {std::to_string(count)});
}

}  // namespace dormel
