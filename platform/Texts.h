// The texts that people read, in the language of their session. In the sources they stand in English, each within
// `translate` (or `translatable`, where it is looked up later): tools/texts collects them from there, and a language's
// table is packaging/texts/<language>.po. Logs, settings, commands and addresses are data and never translated;
// numbers, hours and "AM" and "PM" are the same in every language. Main thread only.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace dormel {

class Texts {
 public:
  virtual ~Texts() = default;

  /// `english` itself where there is no translation.
  [[nodiscard]] virtual std::string translated(std::string_view english) const = 0;
  /// The form for so many, `one` or `many` where there is no translation.
  [[nodiscard]] virtual std::string translated(std::string_view one, std::string_view many, int count) const = 0;
  /// "en", "de", "de_AT": what the texts are in.
  [[nodiscard]] virtual std::string language() const = 0;
};

/// The text in the session's language, by the platform in force; in English without one. `values` take the places of
/// %1 to %9.
[[nodiscard]] std::string translate(std::string_view english, std::initializer_list<std::string_view> values = {});
/// The same with two forms; `count` takes the place of %1.
[[nodiscard]] std::string translatePlural(std::string_view one, std::string_view many, int count);

/// Marks a text that is handed to `translate` elsewhere.
constexpr const char* translatable(const char* english) { return english; }

/// `text` with `values` in the places of %1 to %9. Nothing in a value is a place.
[[nodiscard]] std::string filledIn(std::string_view text, std::initializer_list<std::string_view> values);

}  // namespace dormel
