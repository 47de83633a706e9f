// The plain page of window mode: whether and when the screen locks, whether the keyboard can be taken, the two
// rehearsals, and the way to uninstall. Read through from the settings every time it is asked; looks again every two
// seconds while it is on screen. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/Observable.h"
#include "platform/RunLoop.h"
#include "platform/View.h"

namespace dormel {

/// 12-hour label with minutes for an hour of the day, 0 to 23: 9:00 PM, 12:00 AM.
[[nodiscard]] std::string hourLabel(int hour);

class StatusPage : public View, public Observable, public std::enable_shared_from_this<StatusPage> {
 public:
  struct Actions {
    std::function<void()> testRun;
    std::function<void()> demo;
    std::function<void()> uninstall;
    std::function<void()> openAccessibilitySettings;
  };

  [[nodiscard]] static std::shared_ptr<StatusPage> create(Actions actions);

  [[nodiscard]] ViewKind kind() const override { return ViewKind::statusPage; }
  /// Called by the drawing side when the page comes on screen.
  void onAppear();

  /// The lock is switched on and set up.
  [[nodiscard]] bool isArmed() const;
  [[nodiscard]] std::string statusTitle() const;
  [[nodiscard]] std::string statusText() const;
  /// "Locks 10:00 PM, unlocks 6:00 AM."
  [[nodiscard]] std::string scheduleText() const;
  [[nodiscard]] bool isTrusted() const { return seen_->trusted; }
  [[nodiscard]] std::string permissionText() const;
  /// "1.0 (build 15)"
  [[nodiscard]] std::string versionText() const;
  /// Switched on, and the blocking hours are running: nothing that loosens the lock is offered.
  [[nodiscard]] bool isLockedIn() const { return seen_->lockedIn; }
  /// The demo needs the permission; the test run goes without.
  [[nodiscard]] bool canRunDemo() const { return seen_->trusted; }

  void testRun() const { actions_.testRun(); }
  void demo() const { actions_.demo(); }
  void uninstall() const { actions_.uninstall(); }
  void openAccessibilitySettings() const { actions_.openAccessibilitySettings(); }

 private:
  /// Everything that makes the page look different.
  struct Facts {
    bool trusted, lockedIn, complete, enabled;
    int startHour, endHour;
    friend bool operator==(const Facts&, const Facts&) = default;
  };

  explicit StatusPage(Actions actions);
  [[nodiscard]] static Facts look();

  Actions actions_;
  Published<Facts> seen_{this, look()};  // its observers hear of each change once
  Timer refreshTimer_;
};

}  // namespace dormel
