#include "onboarding/qml/ScienceBridge.h"

#include <utility>

namespace dormel {

ScienceBridge::ScienceBridge(std::shared_ptr<ScienceBeat> screen)
    : BeatBridge(screen, QStringLiteral("ScienceBeat"), {&screen->headline, nullptr, &screen->button}),
      screen_(std::move(screen)) {}

QStringList ScienceBridge::wordmarks() {
  QStringList titles;
  for (const ScienceBeat::Wordmark& wordmark : ScienceBeat::wordmarks()) {
    titles << QString::fromStdString(wordmark.title);
  }
  return titles;
}

QStringList ScienceBridge::facts() const {
  QStringList texts;
  for (const ScienceBeat::Fact& fact : screen_->facts) texts << QString::fromStdString(fact.headline);
  return texts;
}

QStringList ScienceBridge::qualifiers() const {
  QStringList texts;
  for (const ScienceBeat::Fact& fact : screen_->facts) texts << QString::fromStdString(fact.qualifier);
  return texts;
}

QVariantList ScienceBridge::factsOn() const {
  QVariantList on;
  for (const ScienceBeat::Fact& fact : screen_->facts) on << fact.reveal.on();
  return on;
}

}  // namespace dormel
