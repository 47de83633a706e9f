#include "platform/linux/freedesktop/MountTable.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <vector>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::freedesktop {
namespace {

/// The kernel writes space, tab, line end and backslash as three octal digits.
std::string unescaped(std::string_view text) {
  std::string plain;
  const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 3 < text.size() && isOctal(text[i + 1]) && isOctal(text[i + 2]) &&
        isOctal(text[i + 3])) {
      plain += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0'));
      i += 3;
    } else {
      plain += text[i];
    }
  }
  return plain;
}

bool isAtOrBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return true;
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

/// A line: id, parent, device, root, mount point, options, any number of tags, "-", type, source, more options.
std::optional<Mount> parsed(const std::string& line) {
  std::istringstream words(line);
  std::vector<std::string> fields;
  for (std::string word; words >> word;) fields.push_back(word);
  const auto dash = std::find(fields.begin() + std::min<std::ptrdiff_t>(6, std::ssize(fields)), fields.end(), "-");
  if (fields.end() - dash < 3) return {};
  return Mount{unescaped(fields[4]), dash[1], unescaped(dash[2])};
}

constexpr std::array SYSTEM_FOLDERS{"/usr",  "/bin",     "/lib",    "/etc", "/opt",  "/nix",
                                    "/snap", "/sysroot", "/ostree", "/app", "/boot", "/var/lib/snapd"};
constexpr std::array FOLDERS_FOR_MOUNTS{"/media", "/run/media", "/mnt", "/Volumes"};
constexpr std::array IMAGE_TYPES{"squashfs",
                                 "iso9660",
                                 "udf",
                                 "erofs",
                                 "cramfs",
                                 "fuse.squashfuse",
                                 "fuse.squashfuse_ll",
                                 "fuse.fuseiso",
                                 "fuse.archivemount",
                                 "fuse.gvfsd-fuse",
                                 "fuse.dwarfs"};

}  // namespace

std::optional<Mount> mountOf(std::string_view table, std::string_view path) {
  std::optional<Mount> best;
  std::istringstream lines{std::string(table)};
  for (std::string line; std::getline(lines, line);) {
    auto mount = parsed(line);
    if (!mount || !isAtOrBelow(path, mount->point)) continue;
    // Of several at one point the last one hides the others.
    if (!best || mount->point.size() >= best->point.size()) best = std::move(mount);
  }
  return best;
}

std::optional<Mount> mountOf(std::string_view path) {
  const auto table = readTextFile("/proc/self/mountinfo");
  return table ? mountOf(*table, path) : std::nullopt;
}

bool isImage(const Mount& mount) {
  const auto liesIn = [&](const std::string& folder) { return isAtOrBelow(mount.point, folder); };
  if (mount.point == "/" || std::any_of(SYSTEM_FOLDERS.begin(), SYSTEM_FOLDERS.end(), liesIn)) return false;
  return std::any_of(FOLDERS_FOR_MOUNTS.begin(), FOLDERS_FOR_MOUNTS.end(), liesIn) || liesIn(runtimeDirectory()) ||
         mount.source.starts_with("/dev/loop") ||
         std::find(IMAGE_TYPES.begin(), IMAGE_TYPES.end(), mount.type) != IMAGE_TYPES.end();
}

}  // namespace dormel::freedesktop
