// The compositor's session lock: while it is up, nothing shows but our surfaces, one on each output, and no key reaches
// anybody else. When it is taken and given back decides LockController; here are the compositor, the mark in the
// runtime folder and the process that watches over this one. Main thread only, but for `restoreAtExit`.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/common/lock/LockController.h"
#include "platform/linux/wayland/LockWatcher.h"
#include "platform/linux/wayland/OutputSurface.h"

namespace dormel::wayland {

class SessionLock final : private LockPlace {
 public:
  /// A lock that one of us left behind is taken over as soon as something is to be locked. `mark`: where the mark is
  /// kept. Where that is empty or the compositor offers no such lock, none of this does anything.
  SessionLock(Connection& connection, Outputs& outputs, Shades& shades, std::string mark);
  SessionLock(const SessionLock&) = delete;
  SessionLock& operator=(const SessionLock&) = delete;
  ~SessionLock() override;

  /// Tells what has changed; `apply` then does what is due.
  [[nodiscard]] LockStages& stages() { return keeper_.stages(); }
  void apply();
  /// Outputs came or went.
  void lookAtOutputs();

  [[nodiscard]] bool isUp() const { return keeper_.isUp(); }
  /// Another program's lock is up, as far as is known.
  [[nodiscard]] bool isRefused() const { return keeper_.isRefused(); }
  /// The lock's surface on this output; null when there is none.
  [[nodiscard]] OutputSurface* surfaceOn(const Output& output) const;

  /// The lock came, ended or was refused, or its surfaces are others. Surfaces that go are still there meanwhile.
  void setOnChange(Task onChange) { onChange_ = std::move(onChange); }

  /// A surface of the lock is there; and, before it goes, that it is no more.
  void setOnSurface(std::function<void(wl_surface*, bool isThere)> onSurface) { onSurface_ = std::move(onSurface); }

  /// Ends the lock for a process that ends now. Any thread.
  void restoreAtExit(std::chrono::milliseconds limit);

 private:
  using Surfaces = std::map<std::uint32_t, std::unique_ptr<SessionLockSurface>>;

  [[nodiscard]] bool isOffered() const { return connection_.globals().sessionLock && !mark_.empty(); }

  bool mark() override;
  void unmark() override;
  void startWatching(bool isMarked) override;
  void stopWatching() override { watcher_.reset(); }
  void ask() override;
  void giveBack(bool isUp) override;
  void confirmEnd() override;
  void changed() override;
  void answered(bool isUp);
  [[nodiscard]] LockMark markNow() const;
  void drop(const Surfaces& surfaces);

  Connection& connection_;
  Outputs& outputs_;
  Shades& shades_;
  const std::string mark_;
  LockController keeper_{*this};
  /// Non-null from the request on. The last moments of the process may ask for it from another thread.
  std::atomic<ext_session_lock_v1*> lock_ = nullptr;
  std::atomic<bool> isLocked_ = false;
  std::atomic<bool> isEnding_ = false;  ///< given back, and not confirmed yet
  std::unique_ptr<LockWatcher> watcher_;
  Surfaces surfaces_;
  Owned<wl_callback> ended_;
  Task onChange_;
  std::function<void(wl_surface*, bool isThere)> onSurface_;
};

}  // namespace dormel::wayland
