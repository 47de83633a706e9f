// The update helper as a child process. Main thread.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/loop/EventLoop.h"
#include "platform/linux/posix/PipedProcess.h"
#include "platform/linux/updates/UpdateHelper.h"
#include "platform/linux/updates/UpdateStore.h"

namespace dormel::updates {

class HelperProcess final : public UpdateHelper {
 public:
  /// The helper's file, and the bundle whose updates it looks for. Nothing is started. `loop` outlives this.
  HelperProcess(EventLoop& loop, std::string program, const std::string& bundle);
  ~HelperProcess() override;

  void check(bool fetch, std::function<void(const UpdateResult&)> onResult, Task onEnd) override;
  void cancel() override;
  [[nodiscard]] std::optional<std::string> waiting() const override;
  UpdateResult install() override;
  void clear() override;

 private:
  void hear();
  void end();

  EventLoop& loop_;
  const std::string program_;
  const std::string bundle_;
  const UpdateStore store_;
  std::unique_ptr<posix::PipedProcess> process_;  ///< of a check, until it is over
  EventLoop::Watch output_;
  Timer failure_;  ///< to start it
  std::function<void(const UpdateResult&)> onResult_;
  Task onEnd_;
};

}  // namespace dormel::updates
