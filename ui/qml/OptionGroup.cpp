#include "ui/qml/OptionGroup.h"

#include <algorithm>

namespace dormel {
namespace {

void collect(const QQuickItem& item, std::vector<Pressable*>& found) {
  for (QQuickItem* child : item.childItems()) {
    if (!child->isVisible() || !child->isEnabled()) continue;
    if (auto* option = qobject_cast<Pressable*>(child)) {
      found.push_back(option);
    } else {
      collect(*child, found);
    }
  }
}

int nextBeginningWith(const std::vector<Pressable*>& options, const QString& typed, int after) {
  const int count = static_cast<int>(options.size());
  for (int step = 1; step <= count; ++step) {
    const int at = (after + step) % count;
    const QString text = options[static_cast<std::size_t>(at)]->property("text").toString();
    if (text.startsWith(typed, Qt::CaseInsensitive)) return at;
  }
  return after;
}

bool isPrintable(const QString& text) { return text.size() == 1 && text.front().isLetterOrNumber(); }

}  // namespace

std::vector<Pressable*> OptionGroup::options() const {
  std::vector<Pressable*> found;
  collect(*this, found);
  return found;
}

void OptionGroup::focusOption(int index) {
  const std::vector<Pressable*> all = options();
  if (index < 0 || index >= static_cast<int>(all.size())) return;
  all[static_cast<std::size_t>(index)]->forceActiveFocus(Qt::TabFocusReason);
}

void OptionGroup::keyPressEvent(QKeyEvent* event) {
  event->ignore();
  const std::vector<Pressable*> all = options();
  const auto focused =
      std::find_if(all.begin(), all.end(), [](const auto* option) { return option->hasActiveFocus(); });
  if (focused == all.end() || (event->modifiers() & ~Qt::KeypadModifier) != 0) return;
  const int at = static_cast<int>(focused - all.begin());
  const int last = static_cast<int>(all.size()) - 1;
  int to = at;
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Left:
      to = std::max(at - 1, 0);
      break;
    case Qt::Key_Down:
    case Qt::Key_Right:
      to = std::min(at + 1, last);
      break;
    case Qt::Key_Home:
      to = 0;
      break;
    case Qt::Key_End:
      to = last;
      break;
    default:
      if (!isPrintable(event->text())) return;
      to = nextBeginningWith(all, event->text(), at);
      break;
  }
  event->accept();
  if (to == at) return;
  focusOption(to);
  if (choosesByMoving_) all[static_cast<std::size_t>(to)]->click();
}

}  // namespace dormel
