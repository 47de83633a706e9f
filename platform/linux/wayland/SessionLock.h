// The compositor's session lock: while it is up, nothing shows but our sheets, one on each output, and no key reaches
// anybody else. It outlives its client, so it is kept together with what makes sure that somebody ends it: a mark in
// the runtime folder and a process that watches over this one. Main thread only, but for `giveBack`.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/linux/display/Later.h"
#include "platform/linux/wayland/LockStages.h"
#include "platform/linux/wayland/LockWatcher.h"
#include "platform/linux/wayland/Sheet.h"

namespace dormel::wayland {

class SessionLock {
 public:
  /// A lock that one of us left behind is taken over as soon as something is to be locked. `mark`: where the mark is
  /// kept. Where that is empty or the compositor offers no such lock, none of this does anything.
  SessionLock(Connection& connection, Outputs& outputs, Shades& shades, RunLoop& loop, std::string mark);
  SessionLock(const SessionLock&) = delete;
  SessionLock& operator=(const SessionLock&) = delete;
  ~SessionLock();

  /// Tells what has changed; `apply` then does what is due.
  [[nodiscard]] LockStages& stages() { return stages_; }
  void apply();
  /// Outputs came or went.
  void lookAtOutputs();

  [[nodiscard]] bool isUp() const { return stages_.stage() == LockStages::Stage::locked; }
  /// Another program's lock is up, as far as is known.
  [[nodiscard]] bool isRefused() const { return isRefused_; }
  /// The lock's sheet on this output; null when there is none.
  [[nodiscard]] Sheet* sheetOn(const Output& output) const;

  /// The lock came, ended or was refused, or its sheets are others. Sheets that go are still there meanwhile.
  void setOnChange(Task onChange) { onChange_ = std::move(onChange); }

  /// A surface of the lock is there; and, before it goes, that it is no more.
  void setOnSheet(std::function<void(wl_surface*, bool isThere)> onSheet) { onSheet_ = std::move(onSheet); }

  /// Ends the lock for a process that ends now. Any thread.
  void giveBack(std::chrono::milliseconds limit);

 private:
  using Sheets = std::map<std::uint32_t, std::unique_ptr<LockSheet>>;

  [[nodiscard]] bool isOffered() const { return connection_.globals().sessionLock && !mark_.empty(); }
  void ask();
  void answered(bool isLocked);
  void unlock();
  void retry();
  void changed();
  void drop(const Sheets& sheets);

  Connection& connection_;
  Outputs& outputs_;
  Shades& shades_;
  const std::string mark_;
  LockStages stages_;
  /// Non-null from the request on. The last moments of the process may ask for it from another thread.
  std::atomic<ext_session_lock_v1*> lock_ = nullptr;
  std::atomic<bool> isLocked_ = false;
  std::atomic<bool> isEnding_ = false;  ///< given back, and not confirmed yet
  std::unique_ptr<LockWatcher> watcher_;
  Sheets sheets_;
  Owned<wl_callback> ended_;
  bool isRefused_ = false;  ///< by the last answer: asking again does not change it
  Task onChange_;
  std::function<void(wl_surface*, bool isThere)> onSheet_;
  Later retry_;
};

}  // namespace dormel::wayland
