// Where the program lies on the disk, and what it says of itself. Any thread.
#pragma once

#include <optional>
#include <string>

namespace dormel {

/// The application bundle this process runs from.
class Bundle {
 public:
  virtual ~Bundle() = default;
  /// The bundle's folder, ".../Dormel.app"; the executable's folder when it runs outside a bundle.
  [[nodiscard]] virtual std::string path() const = 0;
  /// The bundle's executable; nothing outside a bundle.
  [[nodiscard]] virtual std::optional<std::string> executablePath() const = 0;
  /// A text of the bundle's information property list ("CFBundleShortVersionString"); nothing when absent.
  [[nodiscard]] virtual std::optional<std::string> info(const std::string& key) const = 0;

  /// The command that removes the system's package which this bundle belongs to, for people ("sudo apt remove dormel").
  /// Nothing for a bundle that somebody put where it stands: only such a one is the program's own to move, to update
  /// and to delete.
  [[nodiscard]] virtual std::optional<std::string> packageRemoval() const = 0;
  [[nodiscard]] bool isPackaged() const { return packageRemoval().has_value(); }
};

}  // namespace dormel
