#include "onboarding/qml/ChipsBridge.h"

namespace dormel {

ChipsBridge::ChipsBridge(const std::shared_ptr<QuestionBeat>& screen)
    : BeatBridge(screen, QStringLiteral("ChipsBeat"), {&screen->headline, nullptr, nullptr}),
      chips_(screen->chips),
      chipWidth_(QuestionBeat::CHIP_WIDTH),
      exclusive_(true),
      isSelected_([known = screen.get()](std::size_t chip) { return known->isSelected(chip); }),
      press_([known = screen.get()](std::size_t chip) { known->pick(chip); }) {
  for (const QuestionBeat::Option& option : screen->options()) labels_ << QString::fromStdString(option.label);
}

ChipsBridge::ChipsBridge(const std::shared_ptr<KeepsBeat>& screen)
    : BeatBridge(screen, QStringLiteral("ChipsBeat"), {&screen->headline, &screen->sub, &screen->button}),
      chips_(screen->chips),
      chipWidth_(KeepsBeat::CHIP_WIDTH),
      exclusive_(false),
      isSelected_([known = screen.get()](std::size_t chip) { return known->isSelected(chip); }),
      press_([known = screen.get()](std::size_t chip) { known->toggle(chip); }) {
  for (const onboardingOptions::Keep& keep : screen->options()) labels_ << QString::fromStdString(keep.label);
}

QVariantList ChipsBridge::selected() const {
  QVariantList selected;
  for (std::size_t i = 0; i < static_cast<std::size_t>(labels_.size()); ++i) selected << isSelected_(i);
  return selected;
}

}  // namespace dormel
