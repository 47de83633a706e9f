#include "assistant/AssentaPanel.h"

#include "platform/Texts.h"

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

std::string title(AssentaPanel panel) {
  switch (panel) {
    case AssentaPanel::accessibility:
      return translate("Accessibility");
    case AssentaPanel::screenRecording:
      return translate("Screen Recording");
    case AssentaPanel::appManagement:
      return translate("App Management");
  }
  return {};
}

std::string settingsURL(AssentaPanel panel) {
  return "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?" + std::string(rawValue(panel));
}

}  // namespace dormel
