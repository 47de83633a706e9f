#include "assistant/AssentaHostApp.h"

#include "platform/Platform.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"

namespace dormel {
namespace {

std::string nameOfFolder(const std::string& path) {
  const std::string name = path.substr(path.find_last_of('/') + 1);
  const std::size_t dot = name.find_last_of('.');
  return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

/// A path in a file address: what an address may not hold is escaped.
std::string escaped(const std::string& path) {
  constexpr std::string_view PLAIN = "-._~!$&'()*+,;=:@/";
  constexpr std::string_view DIGITS = "0123456789ABCDEF";
  std::string text;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isAlnum = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (isAlnum || PLAIN.find(c) != std::string_view::npos) {
      text += c;
    } else {
      text += '%';
      text += DIGITS[byte >> 4U];
      text += DIGITS[byte & 15U];
    }
  }
  return text;
}

}  // namespace

AssentaHostApp AssentaHostApp::current(const Bundle& bundle) {
  AssentaHostApp app;
  app.displayName =
      bundle.info("CFBundleDisplayName").value_or(bundle.info("CFBundleName").value_or(nameOfFolder(bundle.path())));
  app.bundleURL = "file://" + escaped(bundle.path());
  app.icon = platform().workspace.iconForFile(bundle.path());
  return app;
}

}  // namespace dormel
