// The application that is to be granted a permission.
#pragma once

#include <string>

namespace dormel {

class Bundle;

struct AssentaHostApp {
  std::string displayName;  ///< as the guide names it
  std::string bundleURL;    ///< file address of the bundle; what a drag carries
  std::string icon;         ///< file of the picture that file managers show for the bundle; empty when there is none

  /// As `bundle` describes itself: its display name, else its name, else its folder's name without the extension.
  [[nodiscard]] static AssentaHostApp current(const Bundle& bundle);
};

}  // namespace dormel
