#include "platform/linux/wayland/SessionLock.h"

#include <unistd.h>

#include <utility>

#include "platform/linux/wayland/LockMark.h"
#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

constexpr int RETRY_MILLISECONDS = 1000;

}  // namespace

SessionLock::SessionLock(Connection& connection, Outputs& outputs, Shades& shades, RunLoop& loop, std::string mark)
    : connection_(connection),
      outputs_(outputs),
      shades_(shades),
      mark_(std::move(mark)),
      retry_(
          loop, [this] { retry(); }, RETRY_MILLISECONDS) {
  if (isOffered() && hasAbandonedLock(mark_, peerOf(connection_.descriptor()))) {
    stages_.setAbandoned();
  }
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
  if (!isOffered()) return;
  switch (stages_.next()) {
    case LockStages::Step::lock:
      ask();
      break;
    case LockStages::Step::unlock:
      unlock();
      break;
    case LockStages::Step::nothing:
      break;
  }
}

void SessionLock::ask() {
  const auto owner = ProcessMark::of(::getpid());
  const auto compositor = peerOf(connection_.descriptor());
  // Before the request: from the moment it is sent, the lock may be up and this process may die.
  ended_.reset();
  isEnding_ = false;
  if (owner && compositor) static_cast<void>(LockMark{*owner, *compositor}.write(mark_));
  if (!watcher_) watcher_ = std::make_unique<LockWatcher>(mark_, connection_.name());
  lock_ = ext_session_lock_manager_v1_lock(connection_.globals().sessionLock.get());
  static constexpr ext_session_lock_v1_listener LISTENER{
      [](void* self, ext_session_lock_v1*) { static_cast<SessionLock*>(self)->answered(true); },
      [](void* self, ext_session_lock_v1*) { static_cast<SessionLock*>(self)->answered(false); }};
  ext_session_lock_v1_add_listener(lock_, &LISTENER, this);
  lookAtOutputs();
  connection_.flush();
}

void SessionLock::answered(bool isLocked) {
  if (isLocked) {
    isLocked_ = true;
    isRefused_ = false;
    stages_.locked();
    changed();
    apply();  // it may have been wanted no more meanwhile
    return;
  }
  const bool wasLocked = isLocked_.exchange(false);
  isRefused_ = true;
  stages_.finished();
  changed();
  drop(std::exchange(sheets_, {}));
  ext_session_lock_v1* const lock = lock_.exchange(nullptr);
  if (wasLocked) {
    ext_session_lock_v1_unlock_and_destroy(lock);
  } else {
    ext_session_lock_v1_destroy(lock);
  }
  ::unlink(mark_.c_str());
  watcher_.reset();
  retry_.ask();
}

void SessionLock::retry() {
  stages_.retry();
  apply();
  if (stages_.stage() != LockStages::Stage::open) return;
  isRefused_ = false;  // nothing is to be locked any more
  changed();
}

void SessionLock::unlock() {
  isLocked_ = false;
  isEnding_ = true;
  changed();
  ext_session_lock_v1_unlock_and_destroy(lock_.exchange(nullptr));
  drop(std::exchange(sheets_, {}));
  ended_.reset(wl_display_sync(connection_.display()));
  static constexpr wl_callback_listener LISTENER{[](void* data, wl_callback*, std::uint32_t) {
    auto& self = *static_cast<SessionLock*>(data);
    self.ended_.reset();
    self.isEnding_ = false;
    ::unlink(self.mark_.c_str());
    self.watcher_.reset();
  }};
  wl_callback_add_listener(ended_.get(), &LISTENER, this);
  connection_.flush();
}

void SessionLock::lookAtOutputs() {
  if (lock_ == nullptr) return;
  Sheets left;
  bool isOther = false;
  for (const auto& output : outputs_.outputs()) {
    auto& sheet = left[output->number];
    const auto known = sheets_.find(output->number);
    if (known != sheets_.end()) {
      sheet = std::move(known->second);
      sheets_.erase(known);
    } else {
      sheet = std::make_unique<LockSheet>(connection_, shades_, output, lock_);
      if (onSheet_) onSheet_(sheet->surface(), true);
      isOther = true;
    }
  }
  const Sheets gone = std::exchange(sheets_, std::move(left));
  if (isOther || !gone.empty()) changed();
  drop(gone);
}

void SessionLock::drop(const Sheets& sheets) {
  for (const auto& [number, sheet] : sheets) {
    if (onSheet_) onSheet_(sheet->surface(), false);
  }
}

Sheet* SessionLock::sheetOn(const Output& output) const {
  const auto found = sheets_.find(output.number);
  return isUp() && found != sheets_.end() ? found->second.get() : nullptr;
}

void SessionLock::changed() {
  if (onChange_) onChange_();
}

void SessionLock::giveBack(std::chrono::milliseconds limit) {
  if (isLocked_.exchange(false)) {
    ext_session_lock_v1_unlock_and_destroy(lock_.exchange(nullptr));
  } else if (!isEnding_) {
    return;  // one that was asked for and not answered may still come: the mark stays for it
  }
  // A client that leaves at once may be gone before it is heard.
  if (connection_.syncWithin(limit)) ::unlink(mark_.c_str());
}

}  // namespace dormel::wayland
