// The settings file, however damaged: what is set afterwards is there, and for the next process too.
#include <optional>

#include "platform/Process.h"
#include "platform/linux/posix/PosixFiles.h"
#include "platform/linux/posix/PropertyListDefaults.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/posix/TemporaryHome.h"

namespace {

class Silence final : public dormel::StandardOutput {
 public:
  void print(std::string_view /*line*/) override {}
  void printError(std::string_view /*line*/) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace dormel;
  static const TemporaryHome home;
  const std::string folder = home.path() + "/Library/Preferences";
  std::filesystem::remove_all(folder);
  put(folder + "/fuzzed.plist", std::string(fuzz::text(data, size)));
  posix::PosixFiles files;
  Silence output;
  const auto opened = [&] { return std::make_unique<posix::PropertyListDefaults>(files, output, "fuzzed"); };
  const auto store = opened();
  const auto kept = store->object("blockEndHour");
  static_cast<void>(store->integer("blockStartHour"));
  static_cast<void>(store->boolean("blockingEnabled"));
  store->set("blockStartHour", {std::int64_t{23}});
  fuzz::require(store->synchronize(), "it can be written");
  const auto next = opened();
  fuzz::require(next->integer("blockStartHour") == 23, "what was set is there");
  fuzz::require(next->object("blockEndHour").has_value() == kept.has_value(), "and what was there before");
  return 0;
}
