// What a session leaves on disk. Figures are taken on the main thread; the disk is touched on the log queue only, so
// that a slow disk never holds the lock up.
#include <array>
#include <cstdio>
#include <string>

#include "core/Config.h"
#include "engine/NightLog.h"
#include "engine/ScreenManager.h"
#include "platform/Files.h"
#include "platform/Platform.h"

namespace dormel {

void ScreenManager::recordNightStats() {
  const Date now = platform().clock.now();
  if (!Config::isBlockingNow(now)) return;
  const Seconds idle = NightLog::secondsSinceLastInput();
  logQueue_->async([now, idle] { NightLog::recordDormelFired(now, idle); });
}

void ScreenManager::logUnlock() {
  const LocalTime t = platform().calendar.localTime(platform().clock.now());
  std::array<char, 96> stamp{};
  std::snprintf(stamp.data(), stamp.size(), "%04d-%02d-%02d %02d:%02d:%02d", t.year, t.month, t.day, t.hour, t.minute,
                t.second);
  std::string line = std::string(stamp.data()) + " — unlocked (#" + std::to_string(unlockCount_) + ", held " +
                     std::to_string(static_cast<int>(bypassController_->holdDuration())) + "s)\n";
  logQueue_->async([line = std::move(line), path = Config::unlockLogPath()] {
    Config::ensureLogDirectory();
    Files& files = platform().files;
    // A log that is there but cannot be opened right now loses this line, not the ones it has.
    if (!files.append(path, line) && !files.exists(path)) files.write(path, line);
  });
}

}  // namespace dormel
