// The scheduler's command line: a word for each line of the input.
#include "platform/linux/jobs/Job.h"
#include "platform/linux/jobs/LaunchctlCommand.h"
#include "tests/fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace dormel::jobs;
  using dormel::fuzz::require;
  using Verb = LaunchctlCommand::Verb;
  const auto words = dormel::fuzz::words(dormel::fuzz::text(data, size));
  const auto command = parseLaunchctlCommand(words, "gui/1000");
  if (!command) return 0;
  switch (command->verb) {
    case Verb::bootstrap:
    case Verb::login:
      require(words[1] == "gui/1000", "of this user only");
      break;
    case Verb::bootout:
    case Verb::print:
      require(words[1] == "gui/1000/" + command->label, "of this user only");
      [[fallthrough]];
    case Verb::permit:
      require(isJobLabel(command->label), "the label can name files");
      break;
    case Verb::exec:
      require(!command->job.empty(), "there is a program");
      break;
    case Verb::supervise:
      require(command->descriptor > 2, "no standard stream");
      break;
  }
  return 0;
}
