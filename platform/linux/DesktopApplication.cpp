#include "platform/linux/DesktopApplication.h"

#include <utility>

#include "platform/Process.h"

namespace dormel {

DesktopApplication::DesktopApplication(Process& process, std::function<void(bool)> setLockdown)
    : process_(process), setLockdown_(std::move(setLockdown)) {}

void DesktopApplication::setPresentationOptions(std::uint32_t options) {
  options_ = options;
  setLockdown_(options != 0);
}

void DesktopApplication::terminate() {
  if (!mayTerminate()) return;
  if (delegate_ != nullptr) delegate_->willTerminate();
  process_.exit(0);
}

std::unique_ptr<Registration> DesktopNotices::observe(Notice notice, Task handler) {
  if (notice != Notice::screenParametersChanged && onSleepWanted_) std::exchange(onSleepWanted_, {})();
  return observers_[notice].add(std::move(handler));
}

void DesktopNotices::post(Notice notice) { observers_[notice].call(); }

}  // namespace dormel
