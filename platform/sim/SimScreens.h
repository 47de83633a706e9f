// The screens of a simulated machine, in pixels as a display server has them and in points as logic sees them, and the
// notices that the desktop sends round.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "platform/Notices.h"
#include "platform/Registration.h"
#include "platform/Screens.h"
#include "platform/common/CoordinateSpace.h"
#include "platform/common/HandlerList.h"
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
  using Observers = std::map<Notice, HandlerList<>>;

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

  /// How points and pixels relate: by the first screen, or the last one that there was.
  [[nodiscard]] const CoordinateSpace& space() const { return space_; }
  /// Where the screens are in pixels, in their order.
  [[nodiscard]] std::vector<PixelRect> pixels() const;

  // The world's side. Each change is noticed.
  /// A screen with a bar of 24 at its top.
  void plug(const std::string& name, const Rect& frame);
  void pull(const std::string& name);
  void resize(const std::string& name, const Rect& frame);
  /// By raw pixels: a new screen there, or the one of that name goes there.
  void place(const std::string& name, const PixelRect& area);
  /// Every screen goes so many pixels to the right and down.
  void shift(int right, int down);
  /// Pixels to the point; `pixelsToo`: every screen has as many points as before.
  void setScale(double scale, bool pixelsToo);
  /// A dock of that width, in points, at the left of every screen; nobody is told.
  void setDock(double width) { dock_ = width; }
  /// Only the notice: something about the screens changed that is not seen here.
  void noticeOnly() { notices_.post(Notice::screenParametersChanged); }
  /// Called in the world's moment, after the notice was posted.
  void setOnChange(Task onChange) { onChange_ = std::move(onChange); }

 private:
  SimJournal& journal_;
  SimNotices& notices_;
  struct Plugged {
    std::string name;
    PixelRect area;
  };
  void changed();

  std::vector<Plugged> screens_;
  CoordinateSpace space_;
  double dock_ = 0;
  Task onChange_;
};

}  // namespace dormel
