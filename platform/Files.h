// The file system and the places a user's files live in. Paths are absolute plain strings. Any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace dormel {

/// What went wrong with a file, in the system's own words ("No space left on device").
struct FileError {
  std::string message;
};

/// Nothing on success.
using FileResult = std::optional<FileError>;

class Files {
 public:
  virtual ~Files() = default;

  /// The user's home folder, without a trailing slash.
  [[nodiscard]] virtual std::string homeDirectory() const = 0;

  [[nodiscard]] virtual bool exists(const std::string& path) const = 0;

  /// Creates the folder and all missing folders above it; each one created gets `mode` less the process's umask
  /// (0777 gives the default). An existing folder counts as success.
  virtual FileResult createDirectories(const std::string& path, unsigned mode) = 0;

  virtual FileResult setMode(const std::string& path, unsigned mode) = 0;
  /// The permission bits; nothing when there is no such file.
  [[nodiscard]] virtual std::optional<unsigned> mode(const std::string& path) const = 0;

  /// The whole content; nothing when it cannot be read.
  [[nodiscard]] virtual std::optional<std::string> read(const std::string& path) const = 0;

  /// Creates or truncates `path` and writes `bytes`, then, if `mode` is given, sets exactly those permissions
  /// from the moment of creation on. A failed write leaves no partial file behind when it created it.
  virtual FileResult write(const std::string& path, std::string_view bytes, std::optional<unsigned> mode = {}) = 0;

  /// Writes beside `path` and renames over it: a reader sees the old or the new content, never half.
  virtual FileResult writeAtomically(const std::string& path, std::string_view bytes) = 0;

  /// Adds `bytes` at the end of an existing file in one write, or nothing where they do not fit. False when there is
  /// no such file; any other failure is dropped, because whoever then wrote the file anew would lose what is in it.
  virtual bool append(const std::string& path, std::string_view bytes) = 0;

  /// Renames within one volume, replacing what stands at `to`, in one step.
  virtual FileResult rename(const std::string& from, const std::string& to) = 0;

  /// Deletes a file, or a folder with all it holds.
  virtual FileResult remove(const std::string& path) = 0;
};

}  // namespace dormel
