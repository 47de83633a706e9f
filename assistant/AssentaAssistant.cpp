#include "assistant/AssentaAssistant.h"

#include "platform/Platform.h"
#include "platform/Workspace.h"

namespace dormel {

AssentaAssistant& AssentaAssistant::shared() {
  static AssentaAssistant assistant;
  static std::uint64_t generation = 0;
  if (generation != platformGeneration()) {
    assistant = AssentaAssistant();
    generation = platformGeneration();
  }
  return assistant;
}

void AssentaAssistant::present(AssentaPanel panel, const AssentaHostApp& /*hostApp*/,
                               const std::optional<Rect>& /*sourceFrameInScreen*/) {
  dismiss();
  activePanel_ = panel;
  platform().workspace.open(settingsURL(panel));
}

void AssentaAssistant::dismiss() { activePanel_.reset(); }

}  // namespace dormel
