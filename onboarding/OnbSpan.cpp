#include "onboarding/OnbSpan.h"

namespace dormel {

std::vector<OnbSpan> headlineSpans(std::string_view markdown) {
  std::vector<OnbSpan> spans;
  const auto add = [&](std::string_view text, bool strong) {
    if (!text.empty()) spans.push_back({std::string(text), strong});
  };
  std::size_t from = 0;
  while (true) {
    const std::size_t open = markdown.find('*', from);
    const std::size_t close = open == std::string_view::npos ? open : markdown.find('*', open + 1);
    if (close == std::string_view::npos || close == open + 1) break;
    add(markdown.substr(from, open - from), false);
    add(markdown.substr(open + 1, close - open - 1), true);
    from = close + 1;
  }
  add(markdown.substr(from), false);
  return spans;
}

std::string plainText(const std::vector<OnbSpan>& spans) {
  std::string text;
  for (const OnbSpan& span : spans) text += span.text;
  return text;
}

}  // namespace dormel
