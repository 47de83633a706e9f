// Says and does what the program would about GNOME Shell's extension:
// gnome_switch FOLDER-OF-THE-EXTENSION state|lead|refresh|remove
#include <cstdio>
#include <string_view>

#include "platform/linux/gnome/ExtensionSwitch.h"
#include "platform/linux/posix/PosixChildProcesses.h"

int main(int count, char** arguments) {
  if (count != 3) return 64;
  dormel::posix::PosixChildProcesses children;
  dormel::gnome::ExtensionSwitch extension(children, arguments[1]);
  const std::string_view what = arguments[2];
  bool isDone = true;
  if (what == "lead") isDone = extension.lead();
  if (what == "refresh") extension.refreshCopy();
  if (what == "remove") extension.remove();
  constexpr const char* NAMES[] = {"elsewhere",  "tooOld", "allOff", "allOffBare", "absent",
                                   "afterLogin", "off",    "failed", "on",         "onOlder"};
  const auto state = extension.state();
  std::printf("%s\n%s\n", NAMES[static_cast<int>(state)], dormel::gnome::advice(state).c_str());
  return isDone ? 0 : 1;
}
