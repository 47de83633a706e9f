#include "assistant/AssentaHostApp.h"

#include "platform/Bundle.h"
#include "platform/PercentEncoding.h"
#include "platform/Platform.h"
#include "platform/Workspace.h"

namespace dormel {
namespace {

std::string nameOfFolder(const std::string& path) {
  const std::string name = path.substr(path.find_last_of('/') + 1);
  const std::size_t dot = name.find_last_of('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

}  // namespace

AssentaHostApp AssentaHostApp::current(const Bundle& bundle) {
  AssentaHostApp app;
  app.displayName =
      bundle.info("CFBundleDisplayName").value_or(bundle.info("CFBundleName").value_or(nameOfFolder(bundle.path())));
  app.bundleURL = "file://" + percentEncoded(bundle.path());
  app.icon = platform().workspace.iconForFile(bundle.path());
  return app;
}

}  // namespace dormel
