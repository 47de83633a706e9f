#include "platform/linux/qt/AlertView.h"

#include "platform/Texts.h"

namespace dormel {

std::optional<std::size_t> AlertView::cancelButton() const {
  for (std::size_t i = 0; i < alert_.buttons.size(); ++i) {
    for (const char* cancelling : {translatable("Cancel"), translatable("Quit"), translatable("Not Now")}) {
      if (alert_.buttons[i] == translate(cancelling)) return i;
    }
  }
  // Nothing to decide: every way out of it is the same.
  return alert_.buttons.size() == 1 ? std::optional<std::size_t>(0) : std::nullopt;
}

}  // namespace dormel
