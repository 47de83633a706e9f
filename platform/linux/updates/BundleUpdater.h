// The updater of a bundle: decides when to look, keeps the flags, and puts the helper's results into words. Between
// two looks it is one timer that wakes once an hour: often enough to notice that the machine slept or its clock was
// set. Main thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Updater.h"
#include "platform/common/HandlerList.h"
#include "platform/linux/updates/UpdateResult.h"

namespace dormel {
class Clock;
class DefaultsStore;
}  // namespace dormel

namespace dormel::updates {

class UpdateHelper;

/// Keys of the defaults store.
namespace updateKey {
inline constexpr const char* checks = "SUEnableAutomaticChecks";
inline constexpr const char* downloads = "SUAutomaticallyUpdate";
inline constexpr const char* lastCheck = "SULastCheckTime";   ///< whole seconds since 1970
inline constexpr const char* askedFor = "SUAskedForVersion";  ///< what waits because the user looked by hand
}  // namespace updateKey

class BundleUpdater final : public Updater {
 public:
  struct Options {
    bool enabled = false;       ///< false: there is nowhere to look, and nothing is ever asked
    std::int64_t interval = 0;  ///< seconds between two looks of its own accord; a minute at least
    Seconds firstLook = 10;     ///< not before this long after the start: a lock that begins has better things to do
    std::string version{};      ///< the running program's, for people
  };

  /// All outlive this object.
  BundleUpdater(Clock& clock, RunLoop& loop, DefaultsStore& defaults, UpdateHelper& helper, Options options);

  [[nodiscard]] bool automaticallyChecksForUpdates() const override;
  void setAutomaticallyChecksForUpdates(bool on) override;
  [[nodiscard]] bool automaticallyDownloadsUpdates() const override;
  void setAutomaticallyDownloadsUpdates(bool on) override;
  [[nodiscard]] bool hasFeed() const override { return options_.enabled; }
  [[nodiscard]] bool canCheckForUpdates() const override;
  [[nodiscard]] std::unique_ptr<Registration> observe(Task handler) override;
  void checkForUpdates() override;
  [[nodiscard]] std::string status() const override { return status_; }
  bool installStagedUpdate() override;
  void forget() override;

 private:
  void lookLater(Seconds delay);
  void lookIfDue();
  void look(bool fetch, bool byHand);
  void sayWhatWaits();
  [[nodiscard]] bool isWanted(const std::string& version) const;
  void heard(const UpdateResult& result);
  void ended();
  void say(const UpdateResult& result);
  [[nodiscard]] std::int64_t now() const;
  [[nodiscard]] std::int64_t untilDue() const;

  Clock& clock_;
  RunLoop& loop_;
  DefaultsStore& defaults_;
  UpdateHelper& helper_;
  Options options_;
  bool looking_ = false;
  bool byHand_ = false;  // the look that is under way
  UpdateResult heard_;
  std::string status_;
  HandlerList<> observers_;
  const std::shared_ptr<BundleUpdater*> self_;  // what waits in the loop finds out by it whether we still live
};

}  // namespace dormel::updates
