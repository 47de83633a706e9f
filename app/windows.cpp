// The program with windows: what `Dormel` becomes when it is opened.
#include <cstdio>
#include <memory>
#include <utility>

#include "app/CommandLine.h"
#include "app/EntryPoint.h"
#include "assistant/qml/AssistantScenes.h"
#include "onboarding/qml/OnboardingScenes.h"
#include "overlay/qml/OverlayScenes.h"
#include "platform/Platform.h"
#include "platform/linux/WindowPlatform.h"
#include "platform/linux/freedesktop/DesktopLook.h"
#include "settings/qml/SettingsScenes.h"
#include "ui/qml/AppPalette.h"
#include "ui/qml/Motion.h"
#include "ui/qml/UiModule.h"

int main(int argc, char** argv) {
  using namespace dormel;
  cliArgs.assign(argv, argv + argc);
  if (!EntryPoint::opensWindow()) {
    std::fputs("Dormel: this program only shows windows; give options to the one beside it, Dormel\n", stderr);
    return 1;
  }
  if (!WindowPlatform::hasDesktop()) {
    std::fputs("Dormel: there is no display to open a window on; see --help\n", stderr);
    return 1;
  }
  const freedesktop::DesktopLook look = freedesktop::desktopLook();
  Motion::reduce(look.reducedMotion);
  AppPalette::setHighContrast(look.highContrast);
  QmlSceneRegistry scenes;
  registerUiScenes(scenes);
  registerOverlayScenes(scenes);
  registerAssistantScenes(scenes);
  registerSettingsScenes(scenes);
  registerOnboardingScenes(scenes);
  WindowPlatform desktop(std::move(scenes));
  const PlatformScope inForce(desktop.services());
  const std::shared_ptr<AppDelegate> delegate = EntryPoint::startApplication();
  desktop.run(*delegate);
}
