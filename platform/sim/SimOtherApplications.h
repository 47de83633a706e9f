// The other applications of a simulated desktop and their windows.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/RunningApplications.h"
#include "platform/WindowList.h"
#include "platform/common/HandlerList.h"
#include "platform/sim/SimTimeline.h"

namespace dormel {

class SimOtherApplications : public RunningApplications, public WindowList {
 public:
  explicit SimOtherApplications(SimTimeline& timeline) : timeline_(timeline) {}

  [[nodiscard]] std::vector<RunningApplication> withBundleIdentifier(const std::string& identifier) const override {
    std::vector<RunningApplication> found;
    std::copy_if(running_.begin(), running_.end(), std::back_inserter(found),
                 [&](const RunningApplication& one) { return one.bundleIdentifier == identifier; });
    return found;
  }
  [[nodiscard]] std::optional<RunningApplication> frontmost() const override { return frontmost_; }
  [[nodiscard]] std::unique_ptr<Registration> observeActivation(Task handler) override {
    return observers_.add(std::move(handler));
  }
  [[nodiscard]] std::optional<std::vector<ListedWindow>> onScreen() const override { return windows_; }

  // The world's side.
  void setRunning(std::vector<RunningApplication> running) { running_ = std::move(running); }
  /// Another application comes to the front, or none has the user's attention; observers hear of it.
  void bringToFront(std::optional<RunningApplication> application) {
    frontmost_ = std::move(application);
    timeline_.addMain(0, 0, [this] { observers_.call(); });
  }
  /// The frontmost first; nothing for a server that does not answer.
  void setWindows(std::optional<std::vector<ListedWindow>> windows) { windows_ = std::move(windows); }
  [[nodiscard]] std::size_t observers() const { return observers_.size(); }

 private:
  SimTimeline& timeline_;
  std::vector<RunningApplication> running_;
  std::optional<RunningApplication> frontmost_;
  std::optional<std::vector<ListedWindow>> windows_ = std::vector<ListedWindow>();
  HandlerList<> observers_;
};

}  // namespace dormel
