// What the scheduler helper was asked to do. Any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace dormel::jobs {

struct HelperCommand {
  enum class Verb { bootstrap, bootout, print, login, permit, exec, supervise };
  Verb verb = Verb::print;
  std::string label{};                            ///< a job's label: of bootout, print, permit
  std::string propertyList{};                     ///< a path: of bootstrap, login, permit, supervise
  std::string program{};                          ///< of permit
  int descriptor = -1;                            ///< of supervise; not one of the standard streams
  std::string standardOutput{}, standardError{};  ///< of exec; empty for none
  std::vector<std::string> job{};                 ///< of exec: the program and its arguments

  friend bool operator==(const HelperCommand&, const HelperCommand&) = default;
};

/// The command in the helper's arguments, its own name left out; nothing for a wrong usage. `domain` is the only one
/// whose jobs may be spoken of.
[[nodiscard]] std::optional<HelperCommand> parseHelperCommand(const std::vector<std::string>& arguments,
                                                              const std::string& domain);

}  // namespace dormel::jobs
