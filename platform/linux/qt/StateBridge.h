// The bridge of a painted view. It holds the view's state as it was last told, and nothing else: the view may live in
// another process. Main thread only.
#pragma once

#include <memory>
#include <string_view>

#include "platform/PaintedView.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class StateBridge : public ViewBridge {
  Q_OBJECT

 public:
  explicit StateBridge(std::shared_ptr<PaintedView> view);

 protected:
  /// Reads a state; false when the bytes are none, or say nothing new.
  virtual bool take(std::string_view state) = 0;
  /// To be called by the constructor of the bridge that knows how to read.
  void takeFirst() { take(view_->encodedState()); }
  void act(std::uint32_t action) { view_->act(action); }
  void appear() override { view_->onAppear(); }

 private:
  /// Once for all that changes in a turn of the event loop: a storm of keys is drawn as it ends, not key by key.
  void refreshSoon();

  std::shared_ptr<PaintedView> view_;
  std::shared_ptr<const void> observation_;
  bool willRefresh_ = false;
};

}  // namespace dormel
