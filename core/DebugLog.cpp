#include "core/DebugLog.h"

#include <array>
#include <cstdio>
#include <mutex>
#include <utility>

#include "core/Config.h"
#include "core/Constants.h"
#include "platform/Defaults.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/RunLoop.h"

namespace dormel {
namespace {

std::string stamped(std::string_view message) {
  const LocalTime t = platform().calendar.localTime(platform().clock.now());
  std::array<char, 32> stamp{};
  std::snprintf(stamp.data(), stamp.size(), "%02d:%02d:%02d.%03d  ", t.hour, t.minute, t.second, t.millisecond);
  return std::string(stamp.data()).append(message);
}

// One log per platform in force, so that two simulated machines in one process do not share one.
std::mutex sharedMutex;
std::shared_ptr<DebugLog> sharedLog;
std::uint64_t sharedFor = 0;  // platformGeneration

}  // namespace

DebugLog& DebugLog::shared() {
  const std::lock_guard lock(sharedMutex);
  if (!sharedLog || sharedFor != platformGeneration()) {
    sharedLog = create();
    sharedFor = platformGeneration();
  }
  return *sharedLog;
}

std::shared_ptr<DebugLog> DebugLog::create() { return std::shared_ptr<DebugLog>(new DebugLog); }

DebugLog::DebugLog()
    : enabled_(platform().defaults.boolean(defaultsKey::debugLoggingEnabled).value_or(false)),
      fileQueue_(platform().queues.makeSerial(std::string(APP_ID_BASE) + ".debuglog")) {}

void DebugLog::setEnabled(bool enabled) {
  const bool changed = enabled_.exchange(enabled) != enabled;
  platform().defaults.set(defaultsKey::debugLoggingEnabled, {enabled});
  if (changed) notifyObservers();
}

std::string DebugLog::filePath() { return Config::logDirectory() + "/debug.log"; }

void DebugLog::append(std::string_view message) {
  if (!enabled_) return;
  std::string line = stamped(message);
  fileQueue_->async([bytes = line + "\n", path = filePath()] {
    Config::ensureLogDirectory();
    Files& files = platform().files;
    if (!files.append(path, bytes)) files.write(path, bytes);
  });
  if (platform().runLoop.isMainThread()) {
    push(std::move(line));
    return;
  }
  platform().runLoop.async([weak = weak_from_this(), line = std::move(line)]() mutable {
    if (const auto self = weak.lock()) self->push(std::move(line));
  });
}

void DebugLog::push(std::string line) {
  lines_.push_back(std::move(line));
  while (lines_.size() > maxLines) lines_.pop_front();
  notifyObservers();
}

}  // namespace dormel
