// The update helper as the program sees it. Main thread.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/RunLoop.h"
#include "platform/linux/updates/UpdateResult.h"

namespace dormel::updates {

class UpdateHelper {
 public:
  virtual ~UpdateHelper() = default;

  /// Starts a check; with `fetch`, what is newer is fetched and kept. `onResult` hears every result, `onEnd` comes
  /// once after the last; neither from within this call. One at a time.
  virtual void check(bool fetch, std::function<void(const UpdateResult&)> onResult, Task onEnd) = 0;
  /// Ends a check that runs; its handlers are not called any more.
  virtual void cancel() = 0;
  /// The short version of the update that waits to be put in place; nothing when none does.
  [[nodiscard]] virtual std::optional<std::string> waiting() const = 0;
  /// Puts in place what waits. Costs nothing when nothing does; else blocks for about a second.
  virtual UpdateResult install() = 0;
  /// Removes whatever was fetched.
  virtual void clear() = 0;
};

}  // namespace dormel::updates
