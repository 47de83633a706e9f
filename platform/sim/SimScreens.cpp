#include "platform/sim/SimScreens.h"

#include <algorithm>
#include <utility>

namespace dormel {
namespace {

constexpr double BAR = 24;

Screen withBar(const std::string& name, const Rect& frame) {
  return {name, frame, {frame.x, frame.y, frame.width, frame.height - BAR}, {}};
}

}  // namespace

std::unique_ptr<Registration> SimNotices::observe(Notice notice, Task handler) {
  class Observation : public Registration {
   public:
    Observation(std::weak_ptr<Observers> observers, std::shared_ptr<Task> handler)
        : observers_(std::move(observers)), handler_(std::move(handler)) {}
    Observation(const Observation&) = delete;
    Observation& operator=(const Observation&) = delete;
    ~Observation() override {
      const auto observers = observers_.lock();
      if (observers) std::erase_if(*observers, [&](const Observer& o) { return o.handler == handler_; });
    }

   private:
    std::weak_ptr<Observers> observers_;
    std::shared_ptr<Task> handler_;
  };
  auto shared = std::make_shared<Task>(std::move(handler));
  observers_->push_back({notice, shared});
  return std::make_unique<Observation>(observers_, std::move(shared));
}

void SimNotices::post(Notice notice) {
  timeline_.addMain(0, 0, [observers = observers_, notice] {
    const Observers now = *observers;
    for (const Observer& told : now) {
      const bool still = std::any_of(observers->begin(), observers->end(),
                                     [&](const Observer& o) { return o.handler == told.handler; });
      if (told.notice == notice && still) (*told.handler)();
    }
  });
}

std::vector<Screen> SimScreens::all() const {
  std::vector<Screen> screens = screens_;
  for (Screen& screen : screens) {
    screen.displayBounds = {screen.frame.x - screens_.front().frame.x,
                            screens_.front().frame.top() - screen.frame.top(), screen.frame.width, screen.frame.height};
  }
  return screens;
}

void SimScreens::plug(const std::string& name, const Rect& frame) {
  journal_.note("screen ", name, " plugged");
  screens_.push_back(withBar(name, frame));
  noticeOnly();
}

void SimScreens::pull(const std::string& name) {
  journal_.note("screen ", name, " pulled");
  std::erase_if(screens_, [&](const Screen& screen) { return screen.name == name; });
  noticeOnly();
}

void SimScreens::resize(const std::string& name, const Rect& frame) {
  journal_.note("screen ", name, " resized");
  for (Screen& screen : screens_) {
    if (screen.name == name) screen = withBar(name, frame);
  }
  noticeOnly();
}

}  // namespace dormel
