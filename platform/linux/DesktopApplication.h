// The application object and its notices on a Linux desktop. Main thread.
#pragma once

#include <functional>
#include <map>
#include <memory>

#include "platform/Application.h"
#include "platform/Notices.h"
#include "platform/Registration.h"
#include "platform/common/HandlerList.h"

namespace dormel {

class Process;

class DesktopApplication final : public Application {
 public:
  /// `setLockdown` takes the desktop's ways out of the way (true) or gives them back.
  DesktopApplication(Process& process, std::function<void(bool)> setLockdown);

  void setDelegate(ApplicationDelegate* delegate) { delegate_ = delegate; }

  /// A panel needs no dock entry and no task-switcher entry, so neither policy has anything to do for it.
  void setActivationPolicy(ActivationPolicy /*policy*/) override {}
  /// Panels are above everything and take the focus themselves.
  void activateIgnoringOthers() override {}
  void setPresentationOptions(std::uint32_t options) override;
  [[nodiscard]] std::uint32_t presentationOptions() const override { return options_; }
  void terminate() override;
  /// Whether the delegate would let a quit request through.
  [[nodiscard]] bool mayTerminate() const { return delegate_ == nullptr || delegate_->shouldTerminate(); }

 private:
  Process& process_;
  std::function<void(bool)> setLockdown_;
  ApplicationDelegate* delegate_ = nullptr;
  std::uint32_t options_ = 0;
};

/// Hands notices to whoever observes them. An observer may come or go while one is handed out.
class DesktopNotices final : public Notices {
 public:
  [[nodiscard]] std::unique_ptr<Registration> observe(Notice notice, Task handler) override;
  void post(Notice notice);

  /// Called before the first observer of sleep or waking is added: listening to the system bus is started only by
  /// those who need it.
  void setOnSleepWanted(Task onSleepWanted) { onSleepWanted_ = std::move(onSleepWanted); }

 private:
  std::map<Notice, HandlerList<>> observers_;
  Task onSleepWanted_;
};

}  // namespace dormel
