// What is to be seen and held on GNOME's monitors: the screens, the panels, the cover and the keys, told to the shell's
// extension as states and told again to each new connection. Main thread only, but for `restoreAtExit`.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/Screens.h"
#include "platform/common/Canvas.h"
#include "platform/common/lock/HoldPlan.h"
#include "platform/linux/display/CoalescedTimer.h"
#include "platform/linux/display/KeyMonitors.h"
#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/display/XkbLabels.h"
#include "platform/linux/gnome/Link.h"

namespace dormel::gnome {

class Panel;

/// A monitor in the shell's coordinates: points from the top left corner of all monitors, y downwards.
struct Monitor {
  Rect at;
  Rect work;         ///< without the shell's bars
  double scale = 1;  ///< pixels to the point
  bool isPrimary = false;
  friend bool operator==(const Monitor&, const Monitor&) = default;
};

/// The monitors as the extension tells them; what cannot be understood is left out.
[[nodiscard]] std::vector<Monitor> monitorsOf(const Message& told);
/// The rectangle of logic, whose origin is the bottom left corner of the main screen, in the shell's coordinates; and
/// the way back is the same.
[[nodiscard]] Rect flipped(const Rect& rect, const Monitor& main);
[[nodiscard]] std::vector<Screen> screensOf(const std::vector<Monitor>& monitors);

class Stage final : public Screens, public HardwareKeys {
 public:
  using Limit = HoldPlan::Limit;

  /// `link` may be null where the extension may come later (`connect`); then its loss is none, either.
  Stage(std::unique_ptr<Link> link, const Message& hello, EventLoop& loop, CanvasFactory& canvases, const Clock& clock,
        Limit limit, bool mayComeLater);
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;
  ~Stage() override;

  [[nodiscard]] std::vector<Screen> all() const override { return screensOf(monitors_); }
  [[nodiscard]] std::optional<Screen> main() const override;
  [[nodiscard]] bool isDown(KeyCode keyCode) const override { return keys_.isHeld(keyCode); }

  [[nodiscard]] bool isConnected() const { return link_ != nullptr; }
  /// Looks whether the extension has come.
  void connect();
  [[nodiscard]] bool isHolding() const { return plan_.isHolding(); }
  [[nodiscard]] bool hasKeys() const { return link_ && isHolding() && held_.keys; }
  [[nodiscard]] KeyboardLayout& labels() { return labels_; }
  [[nodiscard]] EventLoop& loop() const { return loop_; }
  [[nodiscard]] CanvasFactory& canvases() const { return canvases_; }
  /// Pixels to the point where most of that is, in the shell's coordinates.
  [[nodiscard]] double scaleAt(const Rect& place) const;
  [[nodiscard]] Rect toShell(const Rect& rect) const;

  void setLockdown(bool on);
  void setKeysWanted(bool on);
  void setOnKey(std::function<void(const KeyEvent&)> onKey) { onKey_ = std::move(onKey); }
  /// The keys came or went.
  void setOnKeysChanged(Task onChange) { onKeysChanged_ = std::move(onChange); }
  void setOnScreensChanged(Task onChange) { onScreensChanged_ = std::move(onChange); }
  /// The extension has been gone for so long that it will not come back.
  void setOnLost(Task onLost) { onLost_ = std::move(onLost); }

  /// Tells the extension something about panels; nothing while it is gone.
  void say(const std::string& kind, const Message& body, int descriptor = -1);
  [[nodiscard]] int nextNumber() { return ++lastNumber_; }
  [[nodiscard]] std::uint64_t nextSerial() { return ++lastSerial_; }
  /// A panel came up, or to the front. True: the extension was just told of all panels, this one among them.
  bool raised(const std::shared_ptr<Panel>& panel);
  /// One went, or changed its strength.
  void panelsChanged() { update_.ask(); }

  KeyMonitors keyMonitors;
  /// To the key panel that is in front, unless a monitor swallows it.
  void deliver(const KeyEvent& event);

  /// Nothing stays held, but for a lock of a process that comes back. `mayBeAbandoned`: what is held may be an earlier
  /// run's. Any thread.
  void restoreAtExit(bool comesBack, bool mayBeAbandoned) const;

 private:
  struct Held {
    bool cover = false;
    bool keys = false;
  };

  [[nodiscard]] std::vector<std::shared_ptr<Panel>> visiblePanels() const;
  [[nodiscard]] const Monitor& mainMonitor() const;
  void start(const Message& hello);
  void heard(const std::string& kind, const Message& body);
  void heardKey(const Message& body);
  void takeHeld(const Message& body);
  void takeMonitors(const Message& body);
  void lost();
  void comeBack();
  bool reconnect();
  /// Says what is to be held, if it is another than before. True where all panels were told, too.
  bool update();
  [[nodiscard]] HoldPlan::Panels seenPanels() const;
  void sayHold();
  void pass(const std::optional<KeyEvent>& event);

  EventLoop& loop_;
  CanvasFactory& canvases_;
  const Clock& clock_;
  Limit limit_;
  const bool mayComeLater_;
  mutable std::mutex linkMutex_;  ///< for `restoreAtExit`; only the main thread changes what it guards
  std::unique_ptr<Link> link_;
  std::vector<Monitor> monitors_;
  XkbLabels labels_;
  KeyTracker keys_;
  Held held_;
  HoldPlan plan_;
  std::atomic<bool> hasHeld_ = false;     ///< `restoreAtExit` asks it from any thread
  std::atomic<bool> isLockdown_ = false;  ///< and this
  int lastNumber_ = 0;
  std::uint64_t lastSerial_ = 0;
  std::vector<std::weak_ptr<Panel>> panels_;  ///< in the order in which they came up
  std::function<void(const KeyEvent&)> onKey_;
  Task onKeysChanged_;
  Task onScreensChanged_;
  Task onLost_;
  CoalescedTimer update_;
  CoalescedTimer comeBack_;
  Timer look_;
};

}  // namespace dormel::gnome
