// Shows the permission assistant's guide on the real desktop, as the program's windows do:
// assistant_driver [x y width height], the place that it flies in from. It runs from inside a bundle.
#include <cstdlib>
#include <optional>
#include <utility>

#include "assistant/AssentaAssistant.h"
#include "assistant/qml/AssistantScenes.h"
#include "platform/Platform.h"
#include "platform/linux/WindowPlatform.h"
#include "ui/qml/UiModule.h"

namespace {

class Driver : public dormel::ApplicationDelegate {
 public:
  explicit Driver(std::optional<dormel::Rect> from) : from_(from) {}
  void didFinishLaunching() override {
    dormel::AssentaAssistant::shared().present(dormel::AssentaPanel::accessibility,
                                               dormel::AssentaHostApp::current(dormel::platform().bundle), from_);
  }
  void didBecomeActive() override {}
  bool shouldTerminate() override { return true; }
  void willTerminate() override { dormel::AssentaAssistant::shared().dismiss(); }

 private:
  std::optional<dormel::Rect> from_;
};

}  // namespace

int main(int argc, char** argv) {
  using namespace dormel;
  std::optional<Rect> from;
  if (argc == 5) from = Rect{std::atof(argv[1]), std::atof(argv[2]), std::atof(argv[3]), std::atof(argv[4])};
  QmlSceneRegistry scenes;
  registerUiScenes(scenes);
  registerAssistantScenes(scenes);
  WindowPlatform desktop(std::move(scenes));
  const PlatformScope inForce(desktop.services());
  Driver driver(from);
  desktop.run(driver);
}
