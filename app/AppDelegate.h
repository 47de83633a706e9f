// The application object's delegate and the program's top-level controller: chooses the mode of this run, holds the
// session, and refuses to be quit while a scheduled session is on. Main thread only.
#pragma once

#include <memory>

#include "engine/ScreenManager.h"
#include "platform/Windows.h"

namespace dormel {

class AppDelegate : public ApplicationDelegate {
 public:
  enum class Mode {
    scheduled,  ///< started by the scheduler: one session, which ends the process
    window,     ///< opened by the user
  };

  [[nodiscard]] static std::shared_ptr<AppDelegate> create();

  /// Chooses the mode by the command line and starts it. May end the process.
  void didFinishLaunching() override;
  void didBecomeActive() override {}
  bool shouldTerminate() override;
  void willTerminate() override;

  [[nodiscard]] Mode mode() const { return mode_; }
  [[nodiscard]] const std::shared_ptr<ScreenManager>& screenManager() const { return screenManager_; }

 private:
  AppDelegate() = default;
  void startScheduledBlock();
  void startWindowMode();

  Mode mode_ = Mode::window;
  std::shared_ptr<ScreenManager> screenManager_;
};

}  // namespace dormel
