// The list of updates that a server offers, a JSON document:
//
//   {"format": 1,
//    "updates": [{"build": "15", "version": "1.1", "url": "https://…/Dormel-1.1.tar.xz",
//                 "length": 5242880, "signature": "…"}]}
//
// `build` and `version` are the CFBundleVersion and CFBundleShortVersionString of the bundle in the archive, `length`
// its size in bytes, `signature` the Ed25519 signature over all of them in base64. Other keys are passed over, so that
// more can be said later; a fault anywhere in what we know makes the whole document worthless. Any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/updates/BundleVersion.h"

namespace dormel::updates {

inline constexpr std::size_t LARGEST_FEED = std::size_t{1024} * 1024;
inline constexpr std::uint64_t LARGEST_ARCHIVE = std::uint64_t{128} * 1024 * 1024;
inline constexpr std::size_t MOST_ENTRIES = 100;

/// One update that is offered. Nothing of it is known to be true until the archive's signature was checked.
struct FeedEntry {
  BundleVersion build;
  BundleVersion version;
  std::string address;       ///< an allowed one
  std::uint64_t length = 0;  ///< 1 to LARGEST_ARCHIVE
  std::string signature;     ///< base64, 88 characters; not looked at any closer
};

/// The entries of the document, in its order; nothing when it is not one. Any bytes may be passed.
[[nodiscard]] std::optional<std::vector<FeedEntry>> parseFeed(std::string_view text);

/// The entry with the greatest build, the first of equal ones; null without any.
[[nodiscard]] const FeedEntry* newest(const std::vector<FeedEntry>& entries);

/// One entry by itself, as the document lists it: how an update that was fetched is remembered.
[[nodiscard]] std::optional<FeedEntry> parseEntry(std::string_view text);
[[nodiscard]] std::string write(const FeedEntry& entry);

}  // namespace dormel::updates
