#include "platform/linux/freedesktop/MountTable.h"

#include <mntent.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include "platform/linux/freedesktop/BaseDirectories.h"

namespace dormel::freedesktop {
namespace {

bool isAtOrBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return true;
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
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

std::optional<Mount> mountOf(std::string_view path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> table(::setmntent("/proc/self/mounts", "re"), &::endmntent);
  std::optional<Mount> best;
  mntent mount{};
  std::array<char, 16384> text{};
  while (table && ::getmntent_r(table.get(), &mount, text.data(), text.size()) != nullptr) {
    const std::string_view point = mount.mnt_dir;
    // Of two at one place the later one covers the other.
    if (!isAtOrBelow(path, point) || (best && point.size() < best->point.size())) continue;
    best = Mount{mount.mnt_dir, mount.mnt_type, mount.mnt_fsname};
  }
  return best;
}

bool isImage(const Mount& mount) {
  const auto liesIn = [&](const std::string& folder) { return isAtOrBelow(mount.point, folder); };
  if (mount.point == "/" || std::any_of(SYSTEM_FOLDERS.begin(), SYSTEM_FOLDERS.end(), liesIn)) return false;
  return std::any_of(FOLDERS_FOR_MOUNTS.begin(), FOLDERS_FOR_MOUNTS.end(), liesIn) || liesIn(runtimeDirectory()) ||
         mount.source.starts_with("/dev/loop") ||
         std::find(IMAGE_TYPES.begin(), IMAGE_TYPES.end(), mount.type) != IMAGE_TYPES.end();
}

}  // namespace dormel::freedesktop
