// What is mounted where, from the kernel's table. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dormel::freedesktop {

struct Mount {
  std::string point;   ///< the folder, absolute
  std::string type;    ///< "ext4", "squashfs", "fuse.sshfs"
  std::string source;  ///< "/dev/sda1", or whatever the file system calls it
};

/// What an absolute, resolved path lies on, as this process sees it.
[[nodiscard]] std::optional<Mount> mountOf(std::string_view path);

/// Whether somebody mounted this to look at what is on it: below a folder for such mounts (/media, /run/media, /mnt,
/// /Volumes, the runtime folder's), from a loop device, or of a file system that images are made of.
/// What belongs to the system itself, below /usr, /snap and the like, is no image, even if it is made from one.
[[nodiscard]] bool isImage(const Mount& mount);

}  // namespace dormel::freedesktop
