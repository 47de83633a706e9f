#include "platform/linux/wayland/SessionLock.h"

#include <unistd.h>

#include <utility>

#include "platform/linux/wayland/LockProcesses.h"
#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {

SessionLock::SessionLock(Connection& connection, Outputs& outputs, Shades& shades, std::string mark)
    : connection_(connection), outputs_(outputs), shades_(shades), mark_(std::move(mark)) {
  if (isOffered() && hasAbandonedLock(mark_, peerOf(connection_.descriptor()))) keeper_.stages().setAbandoned();
}

SessionLock::~SessionLock() {
  if (ext_session_lock_v1* lock = lock_.exchange(nullptr)) {
    if (isLocked_) {
      ext_session_lock_v1_unlock_and_destroy(lock);
    } else {
      ext_session_lock_v1_destroy(lock);
    }
  }
}

void SessionLock::apply() {
  if (isOffered()) keeper_.apply();
}

LockMark SessionLock::markNow() const {
  return {processOf(::getpid()).value_or(ProcessMark{}), peerOf(connection_.descriptor()).value_or(ProcessMark{})};
}

bool SessionLock::mark() {
  const LockMark mark = markNow();
  return mark.owner.pid > 0 && mark.compositor.pid > 0 && writeMark(mark, mark_);
}

void SessionLock::unmark() { ::unlink(mark_.c_str()); }

void SessionLock::startWatching(bool isMarked) {
  if (watcher_) return;
  watcher_ = std::make_unique<LockWatcher>(LockWatcher::Watched{mark_, markNow(), isMarked, connection_.name()});
}

void SessionLock::ask() {
  ended_.reset();
  isEnding_ = false;
  lock_ = ext_session_lock_manager_v1_lock(connection_.globals().sessionLock.get());
  static constexpr ext_session_lock_v1_listener LISTENER{
      [](void* self, ext_session_lock_v1*) { static_cast<SessionLock*>(self)->answered(true); },
      [](void* self, ext_session_lock_v1*) { static_cast<SessionLock*>(self)->answered(false); }};
  ext_session_lock_v1_add_listener(lock_, &LISTENER, this);
  lookAtOutputs();
  connection_.flush();
}

void SessionLock::answered(bool isUp) {
  if (isUp) isLocked_ = true;
  keeper_.answered(isUp);
}

void SessionLock::giveBack(bool isUp) {
  isEnding_ = isUp;
  isLocked_ = false;
  ext_session_lock_v1* const lock = lock_.exchange(nullptr);
  if (lock == nullptr) return;
  if (isUp) ext_session_lock_v1_unlock_and_destroy(lock);
  drop(std::exchange(surfaces_, {}));
  if (!isUp) ext_session_lock_v1_destroy(lock);
  connection_.flush();
}

void SessionLock::confirmEnd() {
  ended_.reset(wl_display_sync(connection_.display()));
  static constexpr wl_callback_listener LISTENER{[](void* data, wl_callback*, std::uint32_t) {
    auto& self = *static_cast<SessionLock*>(data);
    self.ended_.reset();
    self.isEnding_ = false;
    self.keeper_.ended();
  }};
  wl_callback_add_listener(ended_.get(), &LISTENER, this);
  connection_.flush();
}

void SessionLock::lookAtOutputs() {
  if (lock_ == nullptr) return;
  Surfaces left;
  bool isOther = false;
  for (const auto& output : outputs_.outputs()) {
    auto& surface = left[output->number];
    const auto known = surfaces_.find(output->number);
    if (known != surfaces_.end()) {
      surface = std::move(known->second);
      surfaces_.erase(known);
    } else {
      surface = std::make_unique<SessionLockSurface>(connection_, shades_, output, lock_);
      if (onSurface_) onSurface_(surface->surface(), true);
      isOther = true;
    }
  }
  const Surfaces gone = std::exchange(surfaces_, std::move(left));
  if (isOther || !gone.empty()) changed();
  drop(gone);
}

void SessionLock::drop(const Surfaces& surfaces) {
  for (const auto& [number, surface] : surfaces) {
    if (onSurface_) onSurface_(surface->surface(), false);
  }
}

OutputSurface* SessionLock::surfaceOn(const Output& output) const {
  const auto found = surfaces_.find(output.number);
  return isUp() && found != surfaces_.end() ? found->second.get() : nullptr;
}

void SessionLock::changed() {
  if (onChange_) onChange_();
}

void SessionLock::restoreAtExit(std::chrono::milliseconds limit) {
  if (isLocked_.exchange(false)) {
    ext_session_lock_v1_unlock_and_destroy(lock_.exchange(nullptr));
  } else if (!isEnding_) {
    return;  // one that was asked for and not answered may still come: the mark stays for it
  }
  // A client that leaves at once may be gone before it is heard.
  if (connection_.syncWithin(limit)) ::unlink(mark_.c_str());
}

}  // namespace dormel::wayland
