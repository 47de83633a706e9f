#include "platform/linux/GuardPlatform.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "platform/Alerts.h"
#include "platform/Dragging.h"
#include "platform/MainWindow.h"
#include "platform/Process.h"
#include "platform/linux/posix/Environment.h"

namespace dormel {

/// Nothing that runs without windows asks for one. If it ever did, nobody must wait for an answer that can't come.
struct GuardPlatform::NoWindows final : Alerts, MainWindows, MainMenu, Dragging {
  explicit NoWindows(LinuxServices& services) : common(services) {}

  /// Said on standard error, and answered by its last button: the one that changes nothing.
  std::unique_ptr<ShownAlert> show(const Alert& alert, std::function<void(int)> onAnswer) override {
    struct Said final : ShownAlert {
      std::shared_ptr<std::function<void(int)>> onAnswer;
    };
    output.printError("Dormel: " + alert.message + ": " + alert.informativeText);
    auto said = std::make_unique<Said>();
    said->onAnswer = std::make_shared<std::function<void(int)>>(std::move(onAnswer));
    const auto last = static_cast<int>(alert.buttons.size()) - 1;
    common.loop().async([weak = std::weak_ptr(said->onAnswer), last] {
      const auto answer = weak.lock();
      if (answer) (*answer)(last);
    });
    return said;
  }

  std::unique_ptr<MainWindow> make(const MainWindowStyle& style, std::shared_ptr<View> /*content*/,
                                   Task /*onClose*/) override {
    struct Unseen final : MainWindow {
      void bringToFront() override {}
      void close() override {}
    };
    output.printError("Dormel: this program has no window for " + style.title);
    return std::make_unique<Unseen>();
  }

  void install(const std::vector<Menu>& /*menus*/, std::size_t /*windows*/,
               std::function<void(MenuCommand)> /*onCommand*/) override {}

  bool begin(DragItem /*item*/, std::function<void(DragOperation)> /*onEnd*/) override { return false; }

  LinuxServices& common;
  posix::PosixOutput output;
};

GuardPlatform::GuardPlatform(LaunchKind kind)
    : common_(kind),
      noWindows_(std::make_unique<NoWindows>(common_)),
      services_(common_.with({common_.display().windows(), *noWindows_, *noWindows_, *noWindows_, *noWindows_})) {}

GuardPlatform::~GuardPlatform() = default;

Platform& GuardPlatform::services() { return services_; }

void GuardPlatform::run(ApplicationDelegate& delegate) {
  common_.launch(delegate);
  common_.loop().run();
  common_.process().exit(1);  // nobody leaves the loop on purpose
}

std::string becomeWindowProgram(char** arguments) {
  const std::string own = posix::executableOf();
  const std::string program = own.substr(0, own.rfind('/') + 1) + "DormelWindow";
  ::execv(program.c_str(), arguments);
  return program + ": " + std::strerror(errno);
}

}  // namespace dormel
