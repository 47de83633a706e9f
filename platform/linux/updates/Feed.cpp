#include "platform/linux/updates/Feed.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "platform/linux/updates/Address.h"

namespace dormel::updates {
namespace {

using Json = nlohmann::json;

constexpr int FORMAT = 1;
constexpr std::size_t SIGNATURE_TEXT = 88;  // 64 bytes in base64

Json parse(std::string_view text) {
  if (text.size() > LARGEST_FEED) return Json(Json::value_t::discarded);
  return Json::parse(text, nullptr, false);
}

/// Null when there is none, or something else than text.
const std::string* textAt(const Json& object, const char* key) {
  const auto entry = object.find(key);
  return entry == object.end() ? nullptr : entry->get_ptr<const std::string*>();
}

std::optional<BundleVersion> versionAt(const Json& object, const char* key) {
  const std::string* text = textAt(object, key);
  return text == nullptr ? std::nullopt : BundleVersion::parse(*text);
}

std::optional<FeedEntry> entryFrom(const Json& object) {
  if (!object.is_object()) return {};
  auto build = versionAt(object, "build");
  auto version = versionAt(object, "version");
  const std::string* address = textAt(object, "url");
  const std::string* signature = textAt(object, "signature");
  const auto length = object.find("length");
  if (!build || !version || address == nullptr || signature == nullptr || length == object.end()) return {};
  if (!isAllowedAddress(*address) || signature->size() != SIGNATURE_TEXT || !length->is_number_unsigned()) return {};
  const auto bytes = length->get<std::uint64_t>();
  if (bytes == 0 || bytes > LARGEST_ARCHIVE) return {};
  return FeedEntry{std::move(*build), std::move(*version), *address, bytes, *signature};
}

}  // namespace

std::optional<std::vector<FeedEntry>> parseFeed(std::string_view text) {
  const Json root = parse(text);
  if (!root.is_object()) return {};
  const auto format = root.find("format");
  if (format == root.end() || !format->is_number_integer() || *format != FORMAT) return {};
  const auto updates = root.find("updates");
  if (updates == root.end() || !updates->is_array() || updates->size() > MOST_ENTRIES) return {};
  std::vector<FeedEntry> entries;
  for (const Json& update : *updates) {
    auto entry = entryFrom(update);
    if (!entry) return {};
    entries.push_back(std::move(*entry));
  }
  return entries;
}

const FeedEntry* newest(const std::vector<FeedEntry>& entries) {
  const auto best = std::max_element(entries.begin(), entries.end(),
                                     [](const FeedEntry& a, const FeedEntry& b) { return a.build < b.build; });
  return best == entries.end() ? nullptr : &*best;
}

std::optional<FeedEntry> parseEntry(std::string_view text) { return entryFrom(parse(text)); }

std::string write(const FeedEntry& entry) {
  return Json{{"build", entry.build.text()},
              {"version", entry.version.text()},
              {"url", entry.address},
              {"length", entry.length},
              {"signature", entry.signature}}
             .dump() +
         "\n";
}

}  // namespace dormel::updates
