#include "core/AppSupport.h"

#include "core/Constants.h"
#include "platform/Platform.h"

namespace dormel::AppSupport {

std::string directory() {
  return platform().files.homeDirectory() + "/Library/Application Support/" + BUNDLE_IDENTIFIER;
}

std::string url(const std::string& name) { return directory() + "/" + name; }

bool ensureDirectory() {
  Files& files = platform().files;
  if (!files.exists(directory()) && files.createDirectories(directory(), 0700)) return false;
  files.setMode(directory(), 0700);
  return true;
}

std::optional<StoreError> write(std::string_view bytes, const std::string& name) {
  if (!ensureDirectory()) return StoreError{StoreError::Case::couldNotCreateDirectory, {}};
  Files& files = platform().files;
  const std::string temporary = url("." + name + ".tmp");
  files.remove(temporary);
  if (files.write(temporary, bytes, 0600)) return StoreError{StoreError::Case::couldNotWrite, name};
  if (const auto error = files.rename(temporary, url(name))) {
    return StoreError{StoreError::Case::file, error->message};
  }
  files.setMode(url(name), 0600);
  return {};
}

void remove(const std::string& name) { platform().files.remove(url(name)); }

}  // namespace dormel::AppSupport
