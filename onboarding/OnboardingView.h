// The first run: a fixed sequence of screens in a window of SIZE, and the one way of moving among them. Keeps the
// answers and where the user stands in the defaults store at every step, unless it is a preview, which reads and
// stores nothing. Main thread only.
//
// Observers are told when another screen is the current one; the screens tell about themselves.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "core/Observable.h"
#include "onboarding/OnboardingBeat.h"
#include "onboarding/OnboardingModel.h"
#include "onboarding/OnboardingScreen.h"
#include "platform/Geometry.h"
#include "platform/View.h"

namespace dormel {

class OnboardingView : public View, public Observable, public std::enable_shared_from_this<OnboardingView> {
 public:
  static constexpr Size SIZE{900, 620};

  struct Hooks {
    /// Starts the live demo of the lock; false when it cannot start.
    std::function<bool(std::function<void()> onEnd)> runDemo;
    /// The last screen's button.
    std::function<void()> onComplete;
  };

  /// With the stored answers, where an interrupted one left off.
  [[nodiscard]] static std::shared_ptr<OnboardingView> create(Hooks hooks);
  /// From the first screen, with no answers; stores nothing.
  [[nodiscard]] static std::shared_ptr<OnboardingView> createPreview(Hooks hooks);
  /// The current screen goes with it.
  ~OnboardingView() override;

  [[nodiscard]] ViewKind kind() const override { return ViewKind::onboarding; }
  /// Called by the drawing side when the window comes on screen: the current screen begins.
  void onAppear();

  [[nodiscard]] bool preview() const { return preview_; }
  [[nodiscard]] const OnboardingModel& model() const { return *model_; }
  [[nodiscard]] OnboardingBeat beat() const { return beat_; }
  /// The screen of that beat: of the class that carries its name. Never null.
  [[nodiscard]] const std::shared_ptr<OnboardingScreen>& screen() const { return screen_; }

  /// The single way of changing beats. Stores the answers and the beat; nothing happens for the current one.
  void advance(OnboardingBeat target);
  /// Where the back button leads; no button is shown while this is nothing.
  [[nodiscard]] std::optional<OnboardingBeat> backTarget() const { return dormel::backTarget(beat_); }
  /// The back button.
  void goBack();

 private:
  OnboardingView(Hooks hooks, std::shared_ptr<OnboardingModel> model, OnboardingBeat beat, bool preview);
  [[nodiscard]] static std::shared_ptr<OnboardingView> make(Hooks hooks, std::shared_ptr<OnboardingModel> model,
                                                            OnboardingBeat beat, bool preview);
  [[nodiscard]] std::shared_ptr<OnboardingScreen> makeScreen(OnboardingBeat beat);
  /// An action of a screen's that leads to a beat.
  [[nodiscard]] OnbAction going(OnboardingBeat target);
  /// The same, after the answer it hands over was kept.
  template <typename Answer>
  [[nodiscard]] std::function<void(Answer)> answering(void (*keep)(OnboardingModel&, Answer), OnboardingBeat target);

  Hooks hooks_;
  std::shared_ptr<OnboardingModel> model_;
  bool preview_;
  bool appeared_ = false;
  OnboardingBeat beat_;
  std::shared_ptr<OnboardingScreen> screen_;
  std::shared_ptr<OnboardingScreen> leaving_;  // it may be the one that is calling
};

}  // namespace dormel
