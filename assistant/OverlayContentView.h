// What the guide shows: a way back, what to do, and the row to drag. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "assistant/AppDragSourceView.h"
#include "assistant/AssentaPanel.h"
#include "platform/View.h"

namespace dormel {

class OverlayContentView : public View {
 public:
  OverlayContentView(const AssentaHostApp& hostApp, AssentaPanel panel, std::function<void()> onBack);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::assistantGuide; }

  /// "Drag Dormel to the list above to allow Accessibility"
  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] const std::shared_ptr<AppDragSourceView>& dragSource() const { return dragSource_; }
  /// The back button was pressed. May end the life of whoever shows this view.
  void back() const;

 private:
  std::string title_;
  std::shared_ptr<AppDragSourceView> dragSource_;
  std::function<void()> onBack_;
};

}  // namespace dormel
