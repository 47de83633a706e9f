// Other programs, run to their end or started to live on.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Process.h"

namespace dormel::posix {

class PosixChildProcesses final : public ChildProcesses {
 public:
  /// Which file stands for a tool that this platform does not have at its place.
  using Tools = std::map<std::string, std::string>;

  explicit PosixChildProcesses(Tools tools = {}) : tools_(std::move(tools)) {}

  std::int32_t run(const std::string& tool, const std::vector<std::string>& arguments) override;
  [[nodiscard]] std::string toolPath(const std::string& tool) const override;
  /// The tool's working folder is "/", so that it holds on to no disk that somebody wants to take out.
  bool start(const std::string& tool, const std::vector<std::string>& arguments) override;

  struct Outcome {
    std::int32_t status = -1;  ///< as `run` answers it
    std::string errors;        ///< what the tool wrote to standard error, its first 4 KB
  };
  /// `run`, keeping what the tool complained about.
  Outcome runHearingErrors(const std::string& tool, const std::vector<std::string>& arguments);

 private:
  Tools tools_;
};

}  // namespace dormel::posix
