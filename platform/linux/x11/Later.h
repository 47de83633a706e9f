// A task for a later turn of the run loop: however often it is asked for until then, it runs once. Destroying it
// takes it back. Main thread only.
#pragma once

#include <QTimer>
#include <utility>

#include "platform/RunLoop.h"

namespace dormel::x11 {

class Later {
 public:
  explicit Later(Task task, int milliseconds = 0) : task_(std::move(task)) {
    timer_.setSingleShot(true);
    timer_.setInterval(milliseconds);
    QObject::connect(&timer_, &QTimer::timeout, [this] { task_(); });
  }
  Later(const Later&) = delete;
  Later& operator=(const Later&) = delete;
  ~Later() = default;

  void ask() {
    if (!timer_.isActive()) timer_.start();
  }
  void forget() { timer_.stop(); }

 private:
  Task task_;
  QTimer timer_;
};

}  // namespace dormel::x11
