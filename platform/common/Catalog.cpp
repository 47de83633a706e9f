#include "platform/common/Catalog.h"

#include <unistr.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <sstream>
#include <utility>

namespace dormel {
namespace {

constexpr std::uint32_t MAGIC = 0x950412de;
constexpr std::size_t HEADER = 20;
constexpr std::size_t ENTRY = 8;

std::optional<std::uint32_t> numberAt(std::string_view bytes, std::size_t at) {
  if (at > bytes.size() || bytes.size() - at < 4) return {};
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8U | static_cast<std::uint8_t>(bytes[at + i]);
  return number;
}

/// The text that an entry of a table points at: its length, and where it is. A zero byte follows each.
std::optional<std::string_view> textAt(std::string_view bytes, std::size_t entry) {
  const auto length = numberAt(bytes, entry);
  const auto at = numberAt(bytes, entry + 4);
  if (!length || !at || *at >= bytes.size() || *length >= bytes.size() - *at || bytes[*at + *length] != 0) return {};
  const std::string_view text = bytes.substr(*at, *length);
  if (u8_check(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()) != nullptr) return {};
  return text;
}

std::set<char> placesIn(std::string_view text) {
  std::set<char> places;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '%' && text[i + 1] >= '1' && text[i + 1] <= '9') places.insert(text[i + 1]);
  }
  return places;
}

}  // namespace

std::optional<Catalog> Catalog::parse(std::string_view bytes) {
  const auto magic = numberAt(bytes, 0);
  const auto revision = numberAt(bytes, 4);
  const auto count = numberAt(bytes, 8);
  const auto originals = numberAt(bytes, 12);
  const auto translations = numberAt(bytes, 16);
  if (bytes.size() < HEADER || magic != MAGIC || !revision || *revision >> 16U != 0) return {};
  if (!count || !originals || !translations || *count > bytes.size() / ENTRY) return {};
  Catalog catalog;
  for (std::size_t i = 0; i < *count; ++i) {
    const auto original = textAt(bytes, *originals + i * ENTRY);
    const auto translation = textAt(bytes, *translations + i * ENTRY);
    if (!original || !translation) return {};
    if (original->empty()) {
      const bool zeroIsSingular = translation->find("plural=(n > 1)") != std::string_view::npos;
      if (!zeroIsSingular && translation->find("plural=(n != 1)") == std::string_view::npos) return {};
      catalog.zeroIsSingular_ = zeroIsSingular;
      continue;
    }
    if (placesIn(*original) != placesIn(*translation)) return {};
    const std::size_t end = translation->find('\0');
    if (original->find('\0') == std::string_view::npos) {
      if (end != std::string_view::npos) return {};
      catalog.texts_.emplace(*original, *translation);
    } else {
      if (end == std::string_view::npos) return {};
      catalog.plurals_.emplace(
          *original, Forms{std::string(translation->substr(0, end)), std::string(translation->substr(end + 1))});
    }
  }
  if (catalog.texts_.empty()) return {};
  return catalog;
}

const std::string* Catalog::find(std::string_view english) const {
  const auto found = texts_.find(english);
  return found == texts_.end() ? nullptr : &found->second;
}

const std::string* Catalog::find(std::string_view one, std::string_view many, int count) const {
  const auto found = plurals_.find((std::string(one) + '\0').append(many));
  if (found == plurals_.end()) return nullptr;
  const bool isSingular = count == 1 || (count == 0 && zeroIsSingular_);
  return isSingular ? &found->second.one : &found->second.many;
}

std::vector<std::string> wantedLanguages(const LanguageVariables& variables) {
  std::string locale;
  for (const std::string* variable : {&variables.lcAll, &variables.lcMessages, &variables.lang}) {
    if (locale.empty()) locale = *variable;
  }
  // A list counts only in a session that has a language at all.
  if (locale.empty() || locale == "C" || locale == "POSIX" || locale.starts_with("C.")) return {};
  std::istringstream list(variables.language.empty() ? locale : variables.language);
  std::vector<std::string> wanted;
  for (std::string name; std::getline(list, name, ':');) {
    name.resize(std::min(name.find_first_of(".@"), name.size()));
    const bool isName = std::all_of(
        name.begin(), name.end(), [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; });
    if (name.empty() || !isName) continue;
    const std::string language = name.substr(0, name.find('_'));
    if (language == "en" || language == "C") break;
    for (const std::string& one : {name, language}) {
      if (std::find(wanted.begin(), wanted.end(), one) == wanted.end()) wanted.push_back(one);
    }
  }
  return wanted;
}

}  // namespace dormel
