#include "platform/linux/DesktopApplication.h"

#include <utility>
#include <vector>

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

struct DesktopNotices::Observer {
  Notice notice;
  Task handler;
};

class DesktopNotices::Membership final : public Registration {
 public:
  explicit Membership(std::shared_ptr<Observer> observer) : observer_(std::move(observer)) {}

 private:
  std::shared_ptr<Observer> observer_;
};

DesktopNotices::DesktopNotices() : observers_(std::make_shared<std::list<std::weak_ptr<Observer>>>()) {}

DesktopNotices::~DesktopNotices() = default;

std::unique_ptr<Registration> DesktopNotices::observe(Notice notice, Task handler) {
  if (notice != Notice::screenParametersChanged && onSleepWanted_) std::exchange(onSleepWanted_, {})();
  auto observer = std::make_shared<Observer>(Observer{notice, std::move(handler)});
  observers_->remove_if([](const auto& gone) { return gone.expired(); });
  observers_->push_back(observer);
  return std::make_unique<Membership>(std::move(observer));
}

void DesktopNotices::post(Notice notice) {
  const std::vector<std::weak_ptr<Observer>> now(observers_->begin(), observers_->end());
  for (const auto& weak : now) {
    const auto observer = weak.lock();
    if (observer && observer->notice == notice) observer->handler();
  }
}

}  // namespace dormel
