// The about panel on its way to being drawn. Main thread only.
#pragma once

#include <string>

#include "platform/View.h"

namespace dormel {

class AboutView : public View {
 public:
  [[nodiscard]] ViewKind kind() const override { return ViewKind::aboutPanel; }
  /// "Version 1.0 (15)"
  [[nodiscard]] std::string versionText() const;
};

}  // namespace dormel
