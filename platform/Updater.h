// The software updater: reads a signed feed from time to time and by hand, keeps a verified update at hand, and puts it
// in place when the program is opened outside the blocking hours. Where the feed is and whose signature counts stands
// in the bundle's information property list; without a feed nothing is ever asked of the network. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "platform/Registration.h"
#include "platform/RunLoop.h"

namespace dormel {

class Updater {
 public:
  virtual ~Updater() = default;

  /// Whether it looks for updates by itself, and whether it fetches what it finds. Kept in the defaults store.
  [[nodiscard]] virtual bool automaticallyChecksForUpdates() const = 0;
  virtual void setAutomaticallyChecksForUpdates(bool on) = 0;
  [[nodiscard]] virtual bool automaticallyDownloadsUpdates() const = 0;
  virtual void setAutomaticallyDownloadsUpdates(bool on) = 0;

  /// Whether there is anywhere to look: without a feed no switch and no button does anything. A bundle that a package
  /// brought has none.
  [[nodiscard]] virtual bool hasFeed() const = 0;
  /// False during a check, and where there is nowhere to look.
  [[nodiscard]] virtual bool canCheckForUpdates() const = 0;
  /// Calls `handler` after every change of `canCheckForUpdates` and `status` while the registration lives.
  [[nodiscard]] virtual std::unique_ptr<Registration> observe(Task handler) = 0;

  /// Looks now, because the user asked: what comes of it, good or bad, is told in `status`.
  virtual void checkForUpdates() = 0;

  /// Puts an update that was fetched earlier in the place of the running bundle, unless it was fetched by itself and
  /// this was switched off since. True: what stands at the bundle's path
  /// now is the new one, and the caller starts it and ends. False: there was none, or it could not be (see `status`).
  /// Costs nothing without one; else blocks for about a second.
  virtual bool installStagedUpdate() = 0;

  /// Gives up what is under way, looks no more, and removes what was fetched: the program is being uninstalled.
  virtual void forget() = 0;

  /// One line for people about the last check or download ("Dormel 1.1 is ready and will be installed when you open
  /// Dormel again."); empty when there is nothing to say.
  [[nodiscard]] virtual std::string status() const = 0;
};

}  // namespace dormel
