#include "platform/linux/qt/TextsTranslator.h"

#include "platform/Texts.h"

namespace dormel {

QString TextsTranslator::translate(const char* /*context*/, const char* sourceText, const char* /*disambiguation*/,
                                   int /*count*/) const {
  // Qt asks on its own account as soon as it has one, before there is a platform.
  return QString::fromStdString(dormel::translate(sourceText));
}

}  // namespace dormel
