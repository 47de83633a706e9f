// Opens things the way the desktop does, for a shell that waits until the program itself is gone.
//
//   open <bundle | file | address>...
//
// Exit status: 0; 1 when something could not be opened; 64 wrong usage.
#include <cstdio>

#include "platform/linux/freedesktop/Opener.h"
#include "platform/linux/posix/PosixChildProcesses.h"
#include "platform/linux/posix/PosixProcess.h"

int main(int count, char** arguments) {
  using namespace dormel;
  if (count < 2) {
    std::fprintf(stderr, "usage: open <bundle | file | address>...\n");
    return 64;
  }
  posix::PosixChildProcesses children;
  posix::PosixOutput output;
  const freedesktop::Opener opener(children, output);
  bool opened = true;
  for (int i = 1; i < count; ++i) opened = opener.open(arguments[i]) && opened;
  return opened ? 0 : 1;
}
