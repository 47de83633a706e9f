// Drags on a simulated desktop: the user lets go over something, or nothing.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "platform/Dragging.h"
#include "platform/sim/SimJournal.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimDragging : public Dragging {
 public:
  SimDragging(SimTimeline& timeline, SimJournal& journal) : timeline_(timeline), journal_(journal) {}

  bool begin(DragItem item, std::function<void(DragOperation)> onEnd) override {
    if (denied_) return false;
    journal_.note("drag from ", item.frame.x, ',', item.frame.y, ' ', item.frame.width, 'x', item.frame.height);
    item_ = std::move(item);
    onEnd_ = std::move(onEnd);
    return true;
  }

  // The user's and the receiver's side.
  void setDenied(bool denied) { denied_ = denied; }
  /// What the receiver gets when it asks.
  [[nodiscard]] std::optional<std::string> ask(const std::string& type) const { return item_.provide(type); }
  /// It is over.
  void end(DragOperation operation) {
    timeline_.addMain(0, 0, [operation, told = std::exchange(onEnd_, nullptr)] { told(operation); });
  }

  void processEnded() {
    onEnd_ = nullptr;
    item_ = {};
  }

 private:
  SimTimeline& timeline_;
  SimJournal& journal_;
  DragItem item_;
  std::function<void(DragOperation)> onEnd_;
  bool denied_ = false;
};

}  // namespace dormel
