// The program. It ends by an explicit exit, inside a one-shot command or inside the event loop.
#include <memory>
#include <utility>

#include "app/CommandLine.h"
#include "app/EntryPoint.h"
#include "overlay/qml/OverlayScenes.h"
#include "platform/Platform.h"
#include "platform/linux/LinuxPlatform.h"

int main(int argc, char** argv) {
  using namespace dormel;
  cliArgs.assign(argv, argv + argc);
  QmlSceneRegistry scenes;
  registerOverlayScenes(scenes);
  LinuxPlatform desktop(argc, argv, std::move(scenes));
  const PlatformScope inForce(desktop.services());
  EntryPoint::runOneShotCommand();
  const std::shared_ptr<AppDelegate> delegate = EntryPoint::startApplication();
  desktop.run(*delegate);
}
