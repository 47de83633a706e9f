// The privacy pages that the assistant can open.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace dormel {

enum class AssentaPanel { accessibility, screenRecording, appManagement };

inline constexpr std::array ASSENTA_PANELS{AssentaPanel::accessibility, AssentaPanel::screenRecording,
                                           AssentaPanel::appManagement};

/// "Privacy_Accessibility", "Privacy_ScreenCapture", "Privacy_AppBundles".
[[nodiscard]] std::string_view rawValue(AssentaPanel panel);
/// The panel of a raw value; nothing for an unknown one.
[[nodiscard]] std::optional<AssentaPanel> assentaPanel(std::string_view rawValue);
/// What the permission is called: "Accessibility", "Screen Recording", "App Management".
[[nodiscard]] std::string title(AssentaPanel panel);
/// The address of the page in the system settings.
[[nodiscard]] std::string settingsURL(AssentaPanel panel);

}  // namespace dormel
