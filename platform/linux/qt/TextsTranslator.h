// Has QML's qsTr() look texts up where everything else does, in the platform's Texts. Install it before any scene is
// made. Main thread only.
#pragma once

#include <QTranslator>

namespace dormel {

class TextsTranslator : public QTranslator {
 public:
  [[nodiscard]] bool isEmpty() const override { return false; }
  [[nodiscard]] QString translate(const char* context, const char* sourceText, const char* disambiguation,
                                  int count) const override;
};

}  // namespace dormel
