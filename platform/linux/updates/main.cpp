// Looks for updates of the bundle that it is a part of, and puts them in place. A program of its own, so that nothing
// that listens to the network or opens an archive is ever loaded into the process that locks.
//
//   update check [--fetch] [--idle SECONDS]    read the feed; fetch, verify and keep what is newer
//   update install                             put in place what was kept
//
// Prints results, a line each, of which the last counts; what an operator wants to know goes to standard error.
// Exit status: 0; 64 wrong usage; 78 the bundle names no feed or no key.
#include <sys/resource.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/linux/posix/PosixBundle.h"
#include "platform/linux/posix/PosixProcess.h"
#include "platform/linux/updates/UpdateWorker.h"

namespace {

int usage() {
  std::fprintf(stderr, "usage: update check [--fetch] [--idle SECONDS]\n       update install\n");
  return 64;
}

}  // namespace

int main(int count, char** words) {
  using namespace dormel;
  using namespace dormel::updates;
  const std::vector<std::string> arguments(words + 1, words + count);
  if (arguments.empty()) return usage();
  const bool install = arguments[0] == "install";
  if (install ? arguments.size() != 1 : arguments[0] != "check") return usage();
  bool fetch = false;
  Timeouts timeouts;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (arguments[i] == "--fetch") {
      fetch = true;
    } else if (arguments[i] == "--idle" && i + 1 < arguments.size()) {
      timeouts.idle = std::strtol(arguments[++i].c_str(), nullptr, 10);
      if (timeouts.idle < 1) return usage();
    } else {
      return usage();
    }
  }
  // The program that started us may have gone; the work goes on without it.
  std::signal(SIGPIPE, SIG_IGN);
  const posix::PosixBundle bundle;
  auto facts = BundleFacts::of(bundle);
  posix::PosixOutput output;
  if (!facts) {
    output.printError("update: the bundle names no feed, or no key to trust");
    return 78;
  }
  const auto tell = [&output](const UpdateResult& result) { output.print(write(result)); };
  UpdateWorker update(std::move(*facts), timeouts, tell,
                      [&output](const std::string& trouble) { output.printError("update: " + trouble); });
  if (!install) ::setpriority(PRIO_PROCESS, 0, 10);  // nobody waits for it
  tell(install ? update.install() : update.check(fetch));
  return 0;
}
