// Lists of texts as Qt has them.
#pragma once

#include <QStringList>

namespace dormel {

/// `text` of each of `values`, which answers a std::string.
template <typename Values, typename Text>
[[nodiscard]] QStringList qtStrings(const Values& values, Text text) {
  QStringList list;
  for (const auto& value : values) list << QString::fromStdString(text(value));
  return list;
}

template <typename Texts>
[[nodiscard]] QStringList qtStrings(const Texts& texts) {
  return qtStrings(texts, [](const auto& text) { return text; });
}

}  // namespace dormel
