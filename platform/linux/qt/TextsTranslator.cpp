#include "platform/linux/qt/TextsTranslator.h"

#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {

QString TextsTranslator::translate(const char* /*context*/, const char* sourceText, const char* /*disambiguation*/,
                                   int /*count*/) const {
  return QString::fromStdString(platform().texts.translated(sourceText));
}

}  // namespace dormel
