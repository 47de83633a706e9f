#include "platform/linux/jobs/LaunchctlCommand.h"

#include <charconv>
#include <string_view>

#include "platform/linux/jobs/Job.h"

namespace dormel::jobs {
namespace {

using Verb = LaunchctlCommand::Verb;

/// The label in "<domain>/<label>".
std::optional<std::string> labelIn(const std::string& target, const std::string& domain) {
  if (!target.starts_with(domain + "/")) return {};
  std::string label = target.substr(domain.size() + 1);
  return isJobLabel(label) ? std::optional(std::move(label)) : std::nullopt;
}

std::optional<int> descriptorIn(const std::string& text) {
  int number = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number <= 2) return {};
  return number;
}

std::string logIn(const std::string& text) { return text == "-" ? std::string() : text; }

}  // namespace

std::optional<LaunchctlCommand> parseLaunchctlCommand(const std::vector<std::string>& arguments,
                                                      const std::string& domain) {
  const std::string_view verb = arguments.empty() ? std::string_view() : std::string_view(arguments[0]);
  const auto takes = [&](std::string_view name, std::size_t count) {
    return verb == name && arguments.size() == count;
  };
  LaunchctlCommand command;
  if (takes("bootstrap", 3) || takes("login", 3)) {
    if (arguments[1] != domain) return {};
    command.verb = verb == "login" ? Verb::login : Verb::bootstrap;
    command.propertyList = arguments[2];
    return command;
  }
  if (takes("bootout", 2) || takes("print", 2)) {
    auto label = labelIn(arguments[1], domain);
    if (!label) return {};
    command.verb = verb == "print" ? Verb::print : Verb::bootout;
    command.label = std::move(*label);
    return command;
  }
  if (takes("permit", 4) && isJobLabel(arguments[1])) {
    command.verb = Verb::permit;
    command.label = arguments[1];
    command.propertyList = arguments[2];
    command.program = arguments[3];
    return command;
  }
  if (verb == "exec" && arguments.size() >= 4) {
    command.verb = Verb::exec;
    command.standardOutput = logIn(arguments[1]);
    command.standardError = logIn(arguments[2]);
    command.job.assign(arguments.begin() + 3, arguments.end());
    return command;
  }
  if (takes("supervise", 3)) {
    const auto descriptor = descriptorIn(arguments[2]);
    if (!descriptor) return {};
    command.verb = Verb::supervise;
    command.propertyList = arguments[1];
    command.descriptor = *descriptor;
    return command;
  }
  return {};
}

}  // namespace dormel::jobs
