// What kind of run this is: the one-shot commands, which print one line and exit, or the desktop application.
// Main thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/AppDelegate.h"

namespace dormel {

namespace EntryPoint {

/// Runs the first of --version, --help, --setup, --uninstall, --check-ax, --nights and --nights=json that is among the
/// arguments (in this order, at any position) and exits with its status; returns when there is none.
void runOneShotCommand();

/// Whether these arguments hold one of the commands above. Needs no platform.
[[nodiscard]] bool isOneShotCommand();

/// Whether they ask for the opened program: neither a scheduled run nor a command. Needs no platform.
[[nodiscard]] bool opensWindow();

/// From now on a termination signal ends the process with status 1, so that the scheduler starts it again. Then
/// makes the delegate of the application object; the caller keeps it for the life of the process.
[[nodiscard]] std::shared_ptr<AppDelegate> startApplication();

}  // namespace EntryPoint
}  // namespace dormel
