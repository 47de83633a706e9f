// Shows the permission assistant's guide on the real desktop, as the program's windows do. Runs from inside a bundle.
#include <utility>

#include "assistant/AssentaAssistant.h"
#include "assistant/qml/AssistantScenes.h"
#include "platform/Platform.h"
#include "platform/linux/WindowPlatform.h"
#include "ui/qml/UiModule.h"

namespace {

class Driver : public dormel::ApplicationDelegate {
 public:
  void didFinishLaunching() override {
    dormel::AssentaAssistant::shared().present(dormel::AssentaPanel::accessibility,
                                               dormel::AssentaHostApp::current(dormel::platform().bundle), {});
  }
  void didBecomeActive() override {}
  bool shouldTerminate() override { return true; }
  void willTerminate() override { dormel::AssentaAssistant::shared().dismiss(); }
};

}  // namespace

int main() {
  using namespace dormel;
  QmlSceneRegistry scenes;
  registerUiScenes(scenes);
  registerAssistantScenes(scenes);
  WindowPlatform desktop(std::move(scenes));
  const PlatformScope inForce(desktop.services());
  Driver driver;
  desktop.run(driver);
}
