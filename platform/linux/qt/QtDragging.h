// Drags out of the toolkit's own windows, by the toolkit's own hand. While one runs, the toolkit runs a loop of its own
// inside the main one. Main thread only.
#pragma once

#include <QObject>
#include <memory>

#include "platform/Dragging.h"
#include "platform/Screens.h"
#include "platform/linux/qt/SceneLoader.h"

namespace dormel {

class QtDragging final : public QObject, public Dragging {
 public:
  /// `stage` draws the pictures; `screens` outlive this object.
  QtDragging(std::shared_ptr<SceneLoader> stage, const Screens& screens);
  ~QtDragging() override;

  bool begin(DragItem item, std::function<void(DragOperation)> onEnd) override;
  /// From a press that began a drag until its end was told: nothing may be put in front of the picture, and the window
  /// that was pressed has to stay on screen, since the pointer is its.
  [[nodiscard]] bool isActive() const { return session_ != nullptr; }

 private:
  struct Session;
  void drag();
  void flyHome(const QPoint& from);
  void end(DragOperation operation);

  std::shared_ptr<SceneLoader> stage_;
  const Screens& screens_;
  std::unique_ptr<Session> session_;
};

}  // namespace dormel
