// The main queue, the timers and the serial queues of a simulated machine: thin doors to its timeline.
#pragma once

#include <utility>

#include "platform/Queues.h"
#include "platform/RunLoop.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimRunLoop : public RunLoop {
 public:
  explicit SimRunLoop(SimTimeline& timeline) : timeline_(timeline) {}

  void async(Task task) override { timeline_.addMain(0, 0, std::move(task)); }
  void asyncAfter(Seconds delay, Task task) override { timeline_.addMain(delay, 0, std::move(task)); }
  [[nodiscard]] bool isMainThread() const override { return timeline_.place() == SimTimeline::Place::main; }
  using RunLoop::schedule;
  /// On a machine so busy that no timer has to wait for another: the accuracy has no effect.
  TimerId schedule(Seconds interval, bool repeats, Task task, Seconds /*accuracy*/) override {
    return TimerId(timeline_.addMain(interval, repeats ? interval : 0, std::move(task)));
  }
  void cancel(TimerId id) override { timeline_.cancelMain(static_cast<std::uint64_t>(id)); }

 private:
  SimTimeline& timeline_;
};

class SimQueues : public Queues {
 public:
  explicit SimQueues(SimTimeline& timeline) : timeline_(timeline) {}

  [[nodiscard]] std::unique_ptr<SerialQueue> makeSerial(std::string_view /*label*/) override {
    class Queue : public SerialQueue {
     public:
      explicit Queue(SimTimeline& timeline) : timeline_(timeline) {}
      void async(Task task) override { timeline_.addSerial(std::move(task)); }

     private:
      SimTimeline& timeline_;
    };
    return std::make_unique<Queue>(timeline_);
  }

  [[nodiscard]] std::unique_ptr<BackgroundTimer> makeBackgroundTimer(Seconds first, Seconds interval,
                                                                     Task tick) override {
    class Ticker : public BackgroundTimer {
     public:
      Ticker(SimTimeline& timeline, std::uint64_t id) : timeline_(timeline), id_(id) {}
      Ticker(const Ticker&) = delete;
      Ticker& operator=(const Ticker&) = delete;
      ~Ticker() override { timeline_.cancelBackground(id_); }
      void cancel() override { timeline_.cancelBackground(id_); }

     private:
      SimTimeline& timeline_;
      std::uint64_t id_;
    };
    return std::make_unique<Ticker>(timeline_, timeline_.addBackground(first, interval, std::move(tick)));
  }

 private:
  SimTimeline& timeline_;
};

}  // namespace dormel
