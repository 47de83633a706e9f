// The program. It ends by an explicit exit, inside a one-shot command or inside the event loop.
#include <cstdio>
#include <memory>
#include <utility>

#include "app/CommandLine.h"
#include "app/EntryPoint.h"
#include "assistant/qml/AssistantScenes.h"
#include "onboarding/qml/OnboardingScenes.h"
#include "overlay/qml/OverlayScenes.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"
#include "settings/qml/SettingsScenes.h"
#include "ui/qml/UiModule.h"

int main(int argc, char** argv) {
  using namespace dormel;
  cliArgs.assign(argv, argv + argc);
  const LaunchKind kind = EntryPoint::isOneShotCommand() ? LaunchKind::command
                          : EntryPoint::opensWindow()    ? LaunchKind::windows
                                                         : LaunchKind::background;
  if (kind == LaunchKind::windows && !LinuxPlatform::hasDesktop()) {
    std::fputs("Dormel: there is no display to open a window on; see --help\n", stderr);
    return 1;
  }
  QmlSceneRegistry scenes;
  registerUiScenes(scenes);
  registerOverlayScenes(scenes);
  registerAssistantScenes(scenes);
  registerSettingsScenes(scenes);
  registerOnboardingScenes(scenes);
  LinuxPlatform desktop(kind, std::move(scenes));
  const PlatformScope inForce(desktop.services());
  EntryPoint::runOneShotCommand();
  const std::shared_ptr<AppDelegate> delegate = EntryPoint::startApplication();
  desktop.run(*delegate);
}
