// The main run loop on Qt's event dispatcher. Create it on the main thread, after the application object.
#pragma once

#include <QObject>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include "platform/RunLoop.h"

class QTimer;

namespace dormel::qt {

/// Intervals of a second and more are coarse (within 5 %, aligned with each other), so that what ticks slowly wakes
/// the processor together.
class QtRunLoop final : public QObject, public RunLoop {
 public:
  QtRunLoop();
  ~QtRunLoop() override;

  void async(Task task) override;
  void asyncAfter(Seconds delay, Task task) override;
  [[nodiscard]] bool isMainThread() const override { return std::this_thread::get_id() == mainThread_; }
  TimerId schedule(Seconds interval, bool repeats, Task task) override;
  void cancel(TimerId id) override;

  /// Runs `action` on the main thread whenever `fd` becomes readable, until it returns false. Main thread.
  void watchReadable(int fd, std::function<bool()> action);

 protected:
  bool event(QEvent* event) override;

 private:
  void runPosted();

  const std::thread::id mainThread_ = std::this_thread::get_id();
  std::mutex mutex_;
  std::vector<Task> posted_;
  std::unordered_map<std::uint64_t, std::unique_ptr<QTimer>> timers_;
  std::uint64_t lastId_ = 0;
};

}  // namespace dormel::qt
