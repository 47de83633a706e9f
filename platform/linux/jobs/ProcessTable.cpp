#include "platform/linux/jobs/ProcessTable.h"

#include <sstream>
#include <string>

#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::jobs {
namespace {

struct Status {
  pid_t parent = 0;
  std::uint64_t startTicks = 0;
};

std::optional<Status> statusOf(pid_t process) {
  const auto text = freedesktop::readTextFile("/proc/" + std::to_string(process) + "/stat");
  if (!text) return {};
  // The second field is the program's name in parentheses and may hold anything; the third follows the last one.
  const auto nameEnd = text->rfind(')');
  if (nameEnd == std::string::npos) return {};
  std::istringstream fields(text->substr(nameEnd + 1));
  std::string state;
  Status status;
  fields >> state >> status.parent;
  for (int field = 5; field < 22; ++field) fields >> state;
  fields >> status.startTicks;
  if (!fields) return {};
  return status;
}

}  // namespace

std::optional<std::uint64_t> processStartTicks(pid_t process) {
  const auto status = statusOf(process);
  return status ? std::optional(status->startTicks) : std::nullopt;
}

bool descendsFrom(pid_t process, pid_t ancestor) {
  for (int depth = 0; depth < 1000 && process > 1; ++depth) {
    const auto status = statusOf(process);
    if (!status) return false;
    if (status->parent == ancestor) return true;
    process = status->parent;
  }
  return false;
}

}  // namespace dormel::jobs
