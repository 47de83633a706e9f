// Property lists: the typed values that the defaults store keeps and that the scheduler's job files are made of,
// and their XML form.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace dormel {

struct PropertyListValue;
using PropertyListArray = std::vector<PropertyListValue>;
using PropertyListDictionary = std::map<std::string, PropertyListValue, std::less<>>;

/// One value. Numbers keep whether they are whole; text is UTF-8; dates and raw data do not occur in our files
/// and read as absent.
struct PropertyListValue {
  std::variant<bool, std::int64_t, double, std::string, PropertyListArray, PropertyListDictionary> value;

  template <typename T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(&value);
  }
  friend bool operator==(const PropertyListValue&, const PropertyListValue&) = default;
};

/// XML property list, format version 1.0, ending in a line feed; nothing when a text is not UTF-8.
[[nodiscard]] std::optional<std::string> writeXmlPropertyList(const PropertyListValue& root);

/// The value that `xml` holds; nothing when it is not a well-formed XML property list. Any bytes may be passed.
[[nodiscard]] std::optional<PropertyListValue> readXmlPropertyList(std::string_view xml);

}  // namespace dormel
