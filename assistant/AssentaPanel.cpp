#include "assistant/AssentaPanel.h"

namespace dormel {

std::string_view rawValue(AssentaPanel panel) {
  switch (panel) {
    case AssentaPanel::accessibility:
      return "Privacy_Accessibility";
    case AssentaPanel::screenRecording:
      return "Privacy_ScreenCapture";
    case AssentaPanel::appManagement:
      return "Privacy_AppBundles";
  }
  return {};
}

std::optional<AssentaPanel> assentaPanel(std::string_view value) {
  for (const AssentaPanel panel : ASSENTA_PANELS) {
    if (rawValue(panel) == value) return panel;
  }
  return {};
}

std::string_view title(AssentaPanel panel) {
  switch (panel) {
    case AssentaPanel::accessibility:
      return "Accessibility";
    case AssentaPanel::screenRecording:
      return "Screen Recording";
    case AssentaPanel::appManagement:
      return "App Management";
  }
  return {};
}

std::string settingsURL(AssentaPanel panel) {
  return "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?" + std::string(rawValue(panel));
}

}  // namespace dormel
