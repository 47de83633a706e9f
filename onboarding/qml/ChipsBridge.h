// Hands a screen with chips to its scene: a question that one chip answers, and one that any number of them do.
// Main thread only.
#pragma once

#include <QStringList>
#include <QVariantList>
#include <functional>
#include <memory>

#include "onboarding/KeepsBeat.h"
#include "onboarding/QuestionBeat.h"
#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class ChipsBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(QStringList labels READ labels CONSTANT)
  Q_PROPERTY(double chipWidth READ chipWidth CONSTANT)
  /// One bool per chip.
  Q_PROPERTY(QVariantList selected READ selected NOTIFY changed)
  Q_PROPERTY(bool chipsOn READ chipsOn NOTIFY changed)
  /// One of them is the answer.
  Q_PROPERTY(bool exclusive READ exclusive CONSTANT)

 public:
  explicit ChipsBridge(const std::shared_ptr<QuestionBeat>& screen);
  explicit ChipsBridge(const std::shared_ptr<KeepsBeat>& screen);

  [[nodiscard]] QStringList labels() const { return labels_; }
  [[nodiscard]] double chipWidth() const { return chipWidth_; }
  [[nodiscard]] QVariantList selected() const;
  [[nodiscard]] bool chipsOn() const { return chips_.on(); }
  [[nodiscard]] bool exclusive() const { return exclusive_; }

  Q_INVOKABLE void pressChip(int chip) { press_(static_cast<std::size_t>(chip)); }

 private:
  const OnbReveal& chips_;
  QStringList labels_;
  double chipWidth_;
  bool exclusive_;
  // Of the screen that the base holds.
  std::function<bool(std::size_t)> isSelected_;
  std::function<void(std::size_t)> press_;
};

}  // namespace dormel
