// The program that everybody starts: it carries out commands and locks. Opened for its windows, it becomes the program
// beside it that has a toolkit.
#include <cstdio>
#include <memory>

#include "app/CommandLine.h"
#include "app/EntryPoint.h"
#include "platform/Platform.h"
#include "platform/linux/GuardPlatform.h"

int main(int argc, char** argv) {
  using namespace dormel;
  cliArgs.assign(argv, argv + argc);
  if (EntryPoint::opensWindow()) {
    const std::string failure = becomeWindowProgram(argv);
    std::fprintf(stderr, "Dormel: the program for its windows can't be started: %s\n", failure.c_str());
    return 1;
  }
  GuardPlatform desktop(EntryPoint::isOneShotCommand() ? LaunchKind::command : LaunchKind::background);
  const PlatformScope inForce(desktop.services());
  EntryPoint::runOneShotCommand();
  const std::shared_ptr<AppDelegate> delegate = EntryPoint::startApplication();
  desktop.run(*delegate);
}
