// A window of the desktop's that shows one view: without the desktop's frame, of a fixed size, dragged by whatever of
// its picture takes no pointer. Main thread only.
#pragma once

#include <QQuickWindow>
#include <memory>
#include <optional>

#include "platform/Geometry.h"
#include "platform/RunLoop.h"
#include "platform/linux/qt/SceneLoader.h"
#include "platform/linux/qt/WindowGroup.h"

namespace dormel {

class DesktopWindow : public QQuickWindow {
  Q_OBJECT
  /// Whether its corners are cut: where they would be black otherwise, they are square.
  Q_PROPERTY(bool rounded READ isRounded CONSTANT)

 public:
  /// Not on screen yet. `flags` tell the desktop what kind of window it is.
  DesktopWindow(std::shared_ptr<WindowGroup> group, const std::shared_ptr<View>& view, Qt::WindowFlags flags);
  DesktopWindow(const DesktopWindow&) = delete;
  DesktopWindow& operator=(const DesktopWindow&) = delete;
  ~DesktopWindow() override;

  /// Whether the view could be drawn.
  [[nodiscard]] bool hasContent() const { return scene_.root != nullptr; }
  [[nodiscard]] bool isRounded() const { return isRounded_; }

  /// The size it wants to be, or a given one, as far as the screen has room for it; it keeps it.
  void fixSize(std::optional<Size> size = {});
  /// Of another size and at another place, by whoever places it; it keeps neither against anybody.
  void place(const QRect& geometry);
  /// The size at which the content is as it wants to be.
  [[nodiscard]] Size contentFittingSize() const;
  /// Whether the pointer can drag it by its picture; true at first.
  void setMovable(bool movable) { isMovable_ = movable; }
  /// Where it was pressed last, on the screens. The pointer may be elsewhere by the time that anybody hears of it.
  [[nodiscard]] QPoint lastPress() const { return lastPress_; }
  /// Puts on the buttons that close and (for a main window) minimise it.
  void wearFrame(bool minimizable);
  /// In the middle of another window, or of the screen that the pointer is on.
  void centre(const QWindow* over);

  /// What a request to close it does, in a later turn; nothing until this is set.
  void setOnCloseRequest(Task onCloseRequest) { onCloseRequest_ = std::move(onCloseRequest); }

  /// Shows it in front of the others, with the focus, un-minimised if need be.
  void bringToFront();
  /// Takes it off the screen at once and deletes it when nothing of it runs any more.
  void dismiss();

 protected:
  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  struct Drag {
    QPoint pointer;
    QPoint window;
    bool byUs = false;
  };
  void tellShowing();
  void requestClose();

  std::shared_ptr<WindowGroup> group_;
  bool isRounded_;
  LoadedScene scene_;
  std::unique_ptr<QQuickItem> frame_;
  Task onCloseRequest_;
  std::optional<Drag> drag_;
  bool isMovable_ = true;
  QPoint lastPress_;
};

struct DismissWindow {
  void operator()(DesktopWindow* window) const { window->dismiss(); }
};
using WindowHandle = std::unique_ptr<DesktopWindow, DismissWindow>;

}  // namespace dormel
