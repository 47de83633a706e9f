// Where a verified update waits: a hidden folder beside the bundle, ".<bundle's name>.update", so that it lies on the
// same disk and putting it in place is one rename. It holds the archive as it came, because only that can be verified
// once more, and what is known of it. Nobody but its owner reads or writes in it. Several processes may use it, each
// under a FolderLock. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Files.h"
#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/updates/Feed.h"

namespace dormel::updates {

class UpdateStore {
 public:
  /// For the bundle at this path. Touches nothing.
  explicit UpdateStore(const std::string& bundle);

  [[nodiscard]] const std::string& folder() const { return folder_; }
  /// Whether anything is there, a rest of something included.
  [[nodiscard]] bool exists() const;
  /// The update that waits; nothing when none does, or none that can be made out.
  [[nodiscard]] std::optional<FeedEntry> staged() const;
  /// Its archive, if it has the length that it should have.
  [[nodiscard]] std::optional<std::string> archive(const FeedEntry& entry) const;

  /// Keeps an update in place of what waited before; half of one is never kept. On a full disk the earlier one stays.
  [[nodiscard]] FileResult keep(const FeedEntry& entry, std::string_view archive) const;
  /// An empty folder in the store, replacing an earlier one of that name; nothing when the disk refuses,
  /// or somebody else's folder stands in the store's place.
  [[nodiscard]] std::optional<std::string> makeFolder(const std::string& name) const;
  void removeFolder(const std::string& name) const;
  /// Removes all of it, what waits first.
  void clear() const;

 private:
  /// Whether the folder is a real one, and this user's.
  [[nodiscard]] bool isOurs() const;
  /// Sees to it that it is there, and that nobody else has anything to do in it.
  [[nodiscard]] FileResult openUp() const;
  [[nodiscard]] std::string in(const char* name) const { return folder_ + "/" + name; }

  std::string folder_;
};

/// Holds the folder that a bundle stands in against other processes of ours, while it lives. Waits for it.
class FolderLock {
 public:
  explicit FolderLock(const std::string& folder);

 private:
  posix::FileDescriptor folder_;
};

}  // namespace dormel::updates
