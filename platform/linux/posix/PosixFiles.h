// The file system through POSIX calls. Any thread.
#pragma once

#include <functional>
#include <utility>

#include "platform/Files.h"

namespace dormel::posix {

/// What errno says.
[[nodiscard]] FileError lastError();
/// Whether the open file is the one that stands there: it may have been deleted or replaced since.
[[nodiscard]] bool isAt(int file, const std::string& path);
/// Writes it all, and takes away from `bytes` what was written. False with errno when it could not.
[[nodiscard]] bool writeAll(int file, std::string_view& bytes);
/// Deletes a file or a link, or a folder with all it holds; what cannot go does not keep the rest, and the first reason
/// is answered. Ends on file systems, too, where a file that somebody has open only changes its name (NFS, FUSE).
FileResult removeTree(const std::string& path);

class PosixFiles final : public Files {
 public:
  /// Told the path of each folder that `createDirectories` made. Any thread.
  using OnFolderCreated = std::function<void(const std::string& path)>;

  explicit PosixFiles(OnFolderCreated onFolderCreated = {});

  [[nodiscard]] std::string homeDirectory() const override { return home_; }
  [[nodiscard]] bool exists(const std::string& path) const override;
  FileResult createDirectories(const std::string& path, unsigned mode) override;
  FileResult setMode(const std::string& path, unsigned mode) override;
  [[nodiscard]] std::optional<unsigned> mode(const std::string& path) const override;
  [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
  FileResult write(const std::string& path, std::string_view bytes, std::optional<unsigned> mode) override;
  FileResult writeAtomically(const std::string& path, std::string_view bytes) override;
  bool append(const std::string& path, std::string_view bytes) override;
  FileResult rename(const std::string& from, const std::string& to) override;
  FileResult remove(const std::string& path) override;

 private:
  OnFolderCreated onFolderCreated_;
  std::string home_;  // HOME, else the account's; read once, because the environment must not be read from threads
};

}  // namespace dormel::posix
