// A call for each frame of the display, by a timer: the server tells no client when it scans out. Main thread only.
#pragma once

#include <QTimer>
#include <memory>
#include <utility>

#include "platform/Windows.h"

namespace dormel::x11 {

class DisplayLink final : public Registration {
 public:
  static constexpr int FRAME_MILLISECONDS = 16;

  explicit DisplayLink(Task onFrame) : onFrame_(std::make_shared<Task>(std::move(onFrame))) {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [kept = onFrame_] { (*std::shared_ptr<Task>(kept))(); });
    timer_.start(FRAME_MILLISECONDS);
  }
  DisplayLink(const DisplayLink&) = delete;
  DisplayLink& operator=(const DisplayLink&) = delete;
  ~DisplayLink() override = default;

 private:
  std::shared_ptr<Task> onFrame_;
  QTimer timer_;
};

}  // namespace dormel::x11
