#include "platform/linux/freedesktop/AppBundle.h"

#include <filesystem>
#include <system_error>

#include "platform/PropertyList.h"
#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::freedesktop {
namespace {

constexpr std::string_view PROGRAMS = "/Contents/Linux/";

}  // namespace

bool isBundle(const std::string& path) {
  std::error_code ignored;
  return path.ends_with(".app") && std::filesystem::is_directory(path + "/Contents", ignored);
}

std::optional<std::string> bundleInfo(const std::string& bundle, const std::string& key) {
  const auto xml = readTextFile(bundle + "/Contents/Info.plist");
  const auto root = xml ? readXmlPropertyList(*xml) : std::nullopt;
  const auto* entries = root ? root->as<PropertyListDictionary>() : nullptr;
  if (entries == nullptr) return {};
  const auto entry = entries->find(key);
  if (entry == entries->end()) return {};
  const auto* text = entry->second.as<std::string>();
  return text == nullptr ? std::nullopt : std::optional(*text);
}

std::string bundleExecutable(const std::string& bundle) {
  const std::string name =
      bundleInfo(bundle, "CFBundleExecutable").value_or(std::filesystem::path(bundle).stem().string());
  return bundle + std::string(PROGRAMS) + name;
}

std::optional<std::string> bundleOfExecutable(std::string_view executable) {
  const auto end = executable.rfind(PROGRAMS);
  if (end == std::string_view::npos) return {};
  if (executable.find('/', end + PROGRAMS.size()) != std::string_view::npos) return {};
  const std::string_view bundle = executable.substr(0, end);
  if (!bundle.ends_with(".app")) return {};
  return std::string(bundle);
}

}  // namespace dormel::freedesktop
