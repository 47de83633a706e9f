// A language's table of texts as msgfmt writes it (a GNU message catalog, little-endian). Any thread.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dormel {

class Catalog {
 public:
  /// Nothing for bytes that are not a whole catalog in UTF-8, and for one whose plural rule is neither "n != 1" nor
  /// "n > 1". A text that lost a place for a value is damage, too.
  [[nodiscard]] static std::optional<Catalog> parse(std::string_view bytes);

  /// Null where it has none.
  [[nodiscard]] const std::string* find(std::string_view english) const;
  [[nodiscard]] const std::string* find(std::string_view one, std::string_view many, int count) const;

 private:
  struct Forms {
    std::string one;
    std::string many;
  };

  std::map<std::string, std::string, std::less<>> texts_;
  std::map<std::string, Forms, std::less<>> plurals_;  // by the English singular and plural with a 0 between them
  bool zeroIsSingular_ = false;
};

/// The languages that these variables ask for, the best first, as gettext reads them: without encoding, and each with a
/// country before the same without. Empty where English is wanted: an "en" ends the list.
struct LanguageVariables {
  std::string language;  ///< LANGUAGE: a list
  std::string lcAll;
  std::string lcMessages;
  std::string lang;
};
[[nodiscard]] std::vector<std::string> wantedLanguages(const LanguageVariables& variables);

}  // namespace dormel
