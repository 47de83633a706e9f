// The update helper as a child process. Main thread, which has Qt's event loop.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/updates/UpdateHelper.h"
#include "platform/linux/updates/UpdateStore.h"

class QProcess;

namespace dormel::updates {

class HelperProcess final : public UpdateHelper {
 public:
  /// The helper's file, and the bundle whose updates it looks for. Nothing is started.
  HelperProcess(std::string program, const std::string& bundle);
  ~HelperProcess() override;

  void check(bool fetch, std::function<void(const Verdict&)> onVerdict, Task onEnd) override;
  void cancel() override;
  [[nodiscard]] std::optional<std::string> waiting() const override;
  Verdict install() override;
  void clear() override;

 private:
  void hear();
  void end();

  const std::string program_;
  const std::string bundle_;
  const UpdateStore store_;
  std::unique_ptr<QProcess> process_;
  std::function<void(const Verdict&)> onVerdict_;
  Task onEnd_;
};

}  // namespace dormel::updates
