#include "assistant/AppDragSourceView.h"

#include <utility>

#include "platform/Dragging.h"
#include "platform/Platform.h"

namespace dormel {

std::shared_ptr<AppDragSourceView> AppDragSourceView::create(AssentaHostApp hostApp) {
  return std::shared_ptr<AppDragSourceView>(new AppDragSourceView(std::move(hostApp)));
}

void AppDragSourceView::mouseDown(const Rect& row) {
  const auto window = window_.lock();
  if (!window || isRowHidden_) return;
  const Rect frame = window->frame();
  DragItem item;
  item.frame = {frame.x + row.x, frame.top() - row.y - row.height, row.width, row.height};
  item.picture = shared_from_this();
  item.types = {FILE_URL_TYPE};
  // The drop may come after the guide is gone: the permission it was about is granted by it.
  item.provide = [url = hostApp_.bundleURL](const std::string& type) -> std::optional<std::string> {
    if (type != FILE_URL_TYPE) return {};
    return url;
  };
  const bool begun = platform().dragging.begin(std::move(item), [weak = weak_from_this()](DragOperation /*operation*/) {
    if (const auto self = weak.lock()) self->setRowHidden(false);
  });
  if (begun) setRowHidden(true);
}

void AppDragSourceView::setRowHidden(bool hidden) {
  if (std::exchange(isRowHidden_, hidden) == hidden) return;
  if (const auto listener = onChange_) listener();
}

}  // namespace dormel
