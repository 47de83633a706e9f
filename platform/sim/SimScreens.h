// The screens of a simulated machine, and the notices that the desktop sends round.
#pragma once

#include <vector>

#include "platform/Windows.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimNotices : public Notices {
 public:
  explicit SimNotices(SimTimeline& timeline) : timeline_(timeline) {}

  [[nodiscard]] std::unique_ptr<Registration> observe(Notice notice, Task handler) override;

  /// Tells every observer, in a turn of the main thread.
  void post(Notice notice);
  void processEnded() { observers_->clear(); }

 private:
  struct Observer {
    Notice notice;
    std::shared_ptr<Task> handler;
  };
  using Observers = std::vector<Observer>;

  SimTimeline& timeline_;
  std::shared_ptr<Observers> observers_ = std::make_shared<Observers>();
};

class SimScreens : public Screens {
 public:
  SimScreens(SimJournal& journal, SimNotices& notices) : journal_(journal), notices_(notices) {}

  [[nodiscard]] std::vector<Screen> all() const override;
  [[nodiscard]] std::optional<Screen> main() const override {
    return screens_.empty() ? std::nullopt : std::optional(all().front());
  }

  // The world's side. Each change is noticed.
  /// A screen with a bar of 24 at its top.
  void plug(const std::string& name, const Rect& frame);
  void pull(const std::string& name);
  void resize(const std::string& name, const Rect& frame);
  /// Only the notice: something about the screens changed that is not seen here.
  void noticeOnly() { notices_.post(Notice::screenParametersChanged); }

 private:
  SimJournal& journal_;
  SimNotices& notices_;
  std::vector<Screen> screens_;
};

}  // namespace dormel
