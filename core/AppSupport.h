// The record files: one private folder (0700) under the user's application-support area, its files (0600) replaced
// in one step so that a reader never sees half of one.
//
// No locking: the same name must not be written from two threads at once.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Files.h"

namespace dormel {

struct StoreError {
  enum class Case {
    couldNotCreateDirectory,
    couldNotWrite,  ///< the temporary file could not be created
    file,           ///< the final replacement failed, for the reason the file system gave
  };
  Case kind = Case::file;
  std::string detail;  ///< the file's name, or the file system's reason
};

namespace AppSupport {

/// The folder that holds the record files.
[[nodiscard]] std::string directory();

/// Where the record file `name` (a plain name) lives. Touches nothing.
[[nodiscard]] std::string url(const std::string& name);

/// Creates the folder, or tightens it to 0700; false when it could not be created.
bool ensureDirectory();

/// Replaces the named file by `bytes`. On an error the old contents stand.
[[nodiscard]] std::optional<StoreError> write(std::string_view bytes, const std::string& name);

/// Deletes the named file; a missing one is fine.
void remove(const std::string& name);

}  // namespace AppSupport
}  // namespace dormel
