// The defaults store in an XML property list, "~/Library/Preferences/<BUNDLE_IDENTIFIER>.plist".
//
// Any thread, any number of processes: a change is made under a file lock on a freshly read file and put in place by
// one rename, so that two writers of different keys lose neither. A reader looks at the file's identity before each
// answer and reads it again only when another process replaced it.
//
// Each change is written twice: to the file, then to "<file>.good" beside it. A damaged file is kept aside as
// "<file>.damaged" (a number added when that is taken); one that cannot be read, or not even be looked at (a home
// folder on a server that does not answer), is left alone. For either, and for one that is gone, stands what this
// process read of it last, else the second copy, else nothing: a byte on the disk must not decide the hours. Removed
// are the settings only when the file system says that there is neither file. It is said once, in one line on standard
// error. A change puts the file back. What cannot be written holds for this process until it can be.
//
// Reading waits for no other process and writes nothing: a process that hangs with the lock held stops nobody.
#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "platform/Defaults.h"

namespace dormel {
class Files;
class StandardOutput;
}  // namespace dormel

namespace dormel::posix {

class PropertyListDefaults final : public DefaultsStore {
 public:
  PropertyListDefaults(Files& files, StandardOutput& output, const std::string& domain);

  [[nodiscard]] std::optional<PropertyListValue> object(std::string_view key) const override;
  void set(std::string_view key, PropertyListValue value) override;
  void remove(std::string_view key) override;
  void removeDomain() override;
  bool synchronize() override;

 private:
  /// What tells one version of a file from another; or why there is nothing to tell.
  struct Identity {
    int error = 0;  ///< errno; the rest is empty then
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = -1;
    timespec modified{};
    bool operator==(const Identity& other) const;
    /// Any other error says nothing about the file.
    [[nodiscard]] bool isGone() const { return error == ENOENT; }
  };

  [[nodiscard]] static Identity identityOf(const std::string& path);
  [[nodiscard]] Identity identity() const { return identityOf(path_); }
  void refresh() const;
  /// Reads the settings into `stored_`, from wherever they are whole; false when the file must not be replaced.
  bool load(bool isLocked) const;
  /// Moves the damaged file away; what came of it. Nothing when another process is at it.
  [[nodiscard]] std::optional<std::string> keepAside(bool isLocked) const;
  void report(const std::string& what) const;
  bool flush();

  Files& files_;
  StandardOutput& output_;
  std::string folder_;
  std::string path_;
  std::string copyPath_;
  std::string lockPath_;

  mutable std::mutex mutex_;
  mutable Identity known_;
  mutable bool loaded_ = false;
  mutable PropertyListDictionary stored_;
  mutable bool isWhole_ = false;       // `stored_` is what one of the files said
  mutable std::string lastComplaint_;  // each trouble is told once, not at every look
  // Changes that the disk does not hold yet; no value means removed.
  std::map<std::string, std::optional<PropertyListValue>, std::less<>> unwritten_;
};

}  // namespace dormel::posix
