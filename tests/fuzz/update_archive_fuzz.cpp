// Archives: whatever they hold, everything they leave lies in their folder.
#include "platform/linux/updates/Archive.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/posix/TemporaryHome.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace fs = std::filesystem;
  using dormel::fuzz::require;
  static const dormel::TemporaryHome home;
  const fs::path folder = fs::path(home.path()) / "around" / "to";
  fs::create_directories(folder);
  const auto unpacked = dormel::updates::unpackBundle(dormel::fuzz::text(data, size), folder.string());
  require(unpacked.bundle.has_value() == unpacked.trouble.empty(), "a bundle or a reason");
  for (const fs::path& place : {folder, folder.parent_path(), folder.parent_path().parent_path()}) {
    const auto count = std::distance(fs::directory_iterator(place), fs::directory_iterator());
    require(count <= 1, "nothing lies beside");
  }
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const auto status = entry.symlink_status();
    require(!fs::is_other(status), "files, folders and links only");
    if (!fs::is_symlink(status)) continue;
    std::error_code error;
    const fs::path target = fs::weakly_canonical(entry.path(), error);
    require(error || target.string().starts_with(folder.string() + "/"), "no link leads out");
  }
  fs::remove_all(folder.parent_path());
  return 0;
}
