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

std::optional<Offer> offerFrom(const Json& object) {
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
  return Offer{std::move(*build), std::move(*version), *address, bytes, *signature};
}

}  // namespace

std::optional<std::vector<Offer>> parseFeed(std::string_view text) {
  const Json root = parse(text);
  if (!root.is_object()) return {};
  const auto format = root.find("format");
  if (format == root.end() || !format->is_number_integer() || *format != FORMAT) return {};
  const auto updates = root.find("updates");
  if (updates == root.end() || !updates->is_array() || updates->size() > MOST_OFFERS) return {};
  std::vector<Offer> offers;
  for (const Json& update : *updates) {
    auto offer = offerFrom(update);
    if (!offer) return {};
    offers.push_back(std::move(*offer));
  }
  return offers;
}

const Offer* newest(const std::vector<Offer>& offers) {
  const auto best =
      std::max_element(offers.begin(), offers.end(), [](const Offer& a, const Offer& b) { return a.build < b.build; });
  return best == offers.end() ? nullptr : &*best;
}

std::optional<Offer> parseOffer(std::string_view text) { return offerFrom(parse(text)); }

std::string write(const Offer& offer) {
  return Json{{"build", offer.build.text()},
              {"version", offer.version.text()},
              {"url", offer.address},
              {"length", offer.length},
              {"signature", offer.signature}}
             .dump() +
         "\n";
}

}  // namespace dormel::updates
