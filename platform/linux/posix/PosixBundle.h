// The bundle this process runs from: ".../Dormel.app/Contents/{Info.plist,Linux/,Helpers/,Resources/}".
#pragma once

#include <map>
#include <string>

#include "platform/Bundle.h"
#include "platform/PropertyList.h"

namespace dormel::posix {

class PosixBundle final : public Bundle {
 public:
  /// Finds the bundle by the running executable; reads its Info.plist.
  PosixBundle();

  [[nodiscard]] std::string path() const override { return path_; }
  [[nodiscard]] std::optional<std::string> executablePath() const override;
  [[nodiscard]] std::optional<std::string> info(const std::string& key) const override;
  [[nodiscard]] std::optional<std::string> packageRemoval() const override;

  /// ".../Contents/Helpers/<name>", beside the executable when it runs outside a bundle.
  [[nodiscard]] std::string helper(const std::string& name) const;
  /// The files that stand for the tools which programs expect of their platform.
  [[nodiscard]] std::map<std::string, std::string> tools() const;

 private:
  std::string executable_;
  std::string path_;
  bool isBundle_ = false;
  PropertyListDictionary info_;
};

}  // namespace dormel::posix
