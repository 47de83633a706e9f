#include "platform/linux/wayland/LockRelease.h"

#include <poll.h>
#include <unistd.h>
#include <wayland-client-core.h>

#include "platform/linux/wayland/Connection.h"
#include "platform/linux/wayland/LockProcesses.h"
#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

using Clock = std::chrono::steady_clock;

struct Answer {
  bool isLocked = false;
  bool isFinished = false;
};

/// Delivers what comes until there is an answer; false at the deadline or the connection's end.
bool wait(wl_display* display, const Answer& answer, Clock::time_point deadline) {
  while (!answer.isLocked && !answer.isFinished) {
    while (wl_display_prepare_read(display) != 0) wl_display_dispatch_pending(display);
    wl_display_flush(display);
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd entry{wl_display_get_fd(display), POLLIN, 0};
    if (left <= 0 || ::poll(&entry, 1, static_cast<int>(left)) <= 0) {
      wl_display_cancel_read(display);
      if (left <= 0) return false;
      continue;
    }
    if (wl_display_read_events(display) < 0 || wl_display_dispatch_pending(display) < 0) return false;
  }
  return true;
}

LockRelease release(Connection& connection, std::chrono::milliseconds limit) {
  const auto deadline = Clock::now() + limit;
  if (!connection.globals().sessionLock) return LockRelease::failed;
  Answer answer;
  static constexpr ext_session_lock_v1_listener LISTENER{
      [](void* data, ext_session_lock_v1*) { static_cast<Answer*>(data)->isLocked = true; },
      [](void* data, ext_session_lock_v1*) { static_cast<Answer*>(data)->isFinished = true; }};
  ext_session_lock_v1* lock = ext_session_lock_manager_v1_lock(connection.globals().sessionLock.get());
  ext_session_lock_v1_add_listener(lock, &LISTENER, &answer);
  const bool isAnswered = wait(connection.display(), answer, deadline);
  if (isAnswered && answer.isLocked && !answer.isFinished) {
    ext_session_lock_v1_unlock_and_destroy(lock);
    return connection.syncWithin(limit) ? LockRelease::released : LockRelease::failed;
  }
  ext_session_lock_v1_destroy(lock);
  return isAnswered ? LockRelease::owned : LockRelease::failed;
}

}  // namespace

LockRelease releaseLock(const std::string& display, std::chrono::milliseconds limit) {
  const auto connection = Connection::open(display);
  return connection ? release(*connection, limit) : LockRelease::failed;
}

LockRelease releaseAbandonedLock(const std::string& mark, const std::string& display, std::chrono::milliseconds limit) {
  const auto connection = Connection::open(display);
  if (!connection) return LockRelease::failed;
  if (!hasAbandonedLock(mark, peerOf(connection->descriptor()))) return LockRelease::owned;
  const LockRelease result = release(*connection, limit);
  if (result == LockRelease::released) ::unlink(mark.c_str());
  return result;
}

}  // namespace dormel::wayland
