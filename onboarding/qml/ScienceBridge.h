// Hands the facts and their sources to their scene. Main thread only.
#pragma once

#include <QStringList>
#include <memory>

#include "onboarding/ScienceBeat.h"
#include "onboarding/qml/BeatBridge.h"

namespace dormel {

class ScienceBridge : public BeatBridge {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("Made by the first run's bridge")
  Q_PROPERTY(QStringList wordmarks READ wordmarks CONSTANT)
  Q_PROPERTY(bool sourcesOn READ sourcesOn NOTIFY changed)
  /// The facts' headlines and qualifiers, and whether each is on.
  Q_PROPERTY(QStringList facts READ facts CONSTANT)
  Q_PROPERTY(QStringList qualifiers READ qualifiers CONSTANT)
  Q_PROPERTY(QVariantList factsOn READ factsOn NOTIFY changed)

 public:
  explicit ScienceBridge(std::shared_ptr<ScienceBeat> screen);

  [[nodiscard]] static QStringList wordmarks();
  [[nodiscard]] bool sourcesOn() const { return screen_->sources.on(); }
  [[nodiscard]] QStringList facts() const;
  [[nodiscard]] QStringList qualifiers() const;
  [[nodiscard]] QVariantList factsOn() const;

  Q_INVOKABLE void open(int wordmark) const { screen_->open(static_cast<std::size_t>(wordmark)); }

 private:
  std::shared_ptr<ScienceBeat> screen_;
};

}  // namespace dormel
