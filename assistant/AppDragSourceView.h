// The row with the application's icon and name that the user drags into the list of the settings window. It is also
// the picture that is dragged. Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "assistant/AssentaHostApp.h"
#include "platform/Geometry.h"
#include "platform/View.h"
#include "platform/Windows.h"

namespace dormel {

class AppDragSourceView : public View, public std::enable_shared_from_this<AppDragSourceView> {
 public:
  [[nodiscard]] static std::shared_ptr<AppDragSourceView> create(AssentaHostApp hostApp);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::assistantDragRow; }

  [[nodiscard]] const AssentaHostApp& hostApp() const { return hostApp_; }
  /// While the row is being dragged only the dragged picture is to be seen.
  [[nodiscard]] bool isRowHidden() const { return isRowHidden_; }
  /// Called after `isRowHidden` has changed; one listener at a time, an empty one takes it back.
  void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }

  /// The window that shows the row.
  void setWindow(std::weak_ptr<Window> window) { window_ = std::move(window); }
  /// The main button went down on the row, which stands at `row` in its window, measured from the top left corner: the
  /// drag begins. What a receiver gets is the address of the bundle, at the moment it asks.
  void mouseDown(const Rect& row);

 private:
  explicit AppDragSourceView(AssentaHostApp hostApp) : hostApp_(std::move(hostApp)) {}
  void setRowHidden(bool hidden);

  AssentaHostApp hostApp_;
  std::weak_ptr<Window> window_;
  std::function<void()> onChange_;
  bool isRowHidden_ = false;
};

}  // namespace dormel
