// Unpacking an update: a tar archive (plain, gzip, xz or zstd) or a zip archive with one bundle in it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dormel::updates {

struct Unpacked {
  /// The bundle's path; nothing when there is none to be had.
  std::optional<std::string> bundle;
  /// Otherwise: what is wrong, for the maker of the archive. What was unpacked until then is left lying.
  std::string trouble{};
  /// Whether it was the disk's fault and not the archive's.
  bool disk = false;
};

/// Unpacks into `folder`, which is empty and ours. Refused are archives with more than one thing at the top, names that
/// are absolute or climb ("..") or come twice, links that lead out of the bundle, anything but files, folders and
/// symbolic links, and more than 20,000 entries or 1 GiB. Files get 0755 or 0644, never more. Any thread; seconds.
[[nodiscard]] Unpacked unpackBundle(std::string_view archive, const std::string& folder);

}  // namespace dormel::updates
