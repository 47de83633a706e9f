#include "platform/linux/qt/AboutView.h"

#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {

std::string AboutView::versionText() const {
  const Bundle& bundle = platform().bundle;
  return translate("Version %1 (%2)", {bundle.info("CFBundleShortVersionString").value_or("1.0"),
                                       bundle.info("CFBundleVersion").value_or("?")});
}

}  // namespace dormel
