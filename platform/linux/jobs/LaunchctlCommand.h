// What the scheduler's command line was asked to do. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace dormel::jobs {

struct LaunchctlCommand {
  enum class Verb { bootstrap, bootout, print, login, permit, exec, supervise };
  Verb verb = Verb::print;
  std::string label{};                            ///< a job's label: of bootout, print, permit
  std::string propertyList{};                     ///< a path: of bootstrap, login, permit, supervise
  std::string program{};                          ///< of permit
  int descriptor = -1;                            ///< of supervise; not one of the standard streams
  std::string standardOutput{}, standardError{};  ///< of exec; empty for none
  std::vector<std::string> job{};                 ///< of exec: the program and its arguments

  friend bool operator==(const LaunchctlCommand&, const LaunchctlCommand&) = default;
};

/// The command in its arguments, the tool's own name left out; nothing for a wrong usage. `domain` is the only one
/// whose jobs may be spoken of.
[[nodiscard]] std::optional<LaunchctlCommand> parseLaunchctlCommand(const std::vector<std::string>& arguments,
                                                                    const std::string& domain);

}  // namespace dormel::jobs
