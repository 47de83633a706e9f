#include "assistant/AssentaAssistant.h"

#include "assistant/OverlayWindowController.h"
#include "assistant/SettingsWindowLocator.h"
#include "platform/Alerts.h"
#include "platform/Platform.h"
#include "platform/RunningApplications.h"
#include "platform/Screens.h"
#include "platform/Texts.h"
#include "platform/Workspace.h"

namespace dormel {
namespace {

constexpr Seconds REFRESH_INTERVAL = 0.15;

// Where the settings program is in front but shows no window to dock to.
constexpr Rect NO_SCREEN{0, 0, 1100, 800};
constexpr double INSET_ACROSS = 80;
constexpr double INSET_DOWN = 70;

}  // namespace

AssentaAssistant::AssentaAssistant() = default;
AssentaAssistant::~AssentaAssistant() = default;

AssentaAssistant& AssentaAssistant::shared() {
  // Never destroyed by the language: at the end of the process the services may be gone already.
  static auto& assistant = *new std::shared_ptr<AssentaAssistant>;
  static std::uint64_t generation = 0;
  if (!assistant || generation != platformGeneration()) {
    assistant.reset(new AssentaAssistant);
    generation = platformGeneration();
    atPlatformEnd([] { assistant.reset(); });
  }
  return *assistant;
}

void AssentaAssistant::present(AssentaPanel panel, const AssentaHostApp& hostApp,
                               const std::optional<Rect>& sourceFrameInScreen) {
  dismiss();
  activePanel_ = panel;
  pendingSourceFrameInScreen_ = sourceFrameInScreen;
  didPresentCurrentOverlay_ = false;
  overlayController_ = OverlayWindowController::create(hostApp, panel, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->dismiss();
  });
  if (!platform().workspace.open(settingsURL(panel))) {
    advice_ = platform().alerts.show({AlertStyle::informational,
                                      translate("Open your settings"),
                                      platform().workspace.adviceFor(settingsURL(panel)),
                                      {translate("OK")}},
                                     [weak = weak_from_this()](int) {
                                       if (const auto self = weak.lock()) self->advice_.reset();
                                     });
  }
  startTracking();
}

void AssentaAssistant::startTracking() {
  const auto refresh = [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->refreshPosition();
  };
  trackingTimer_ = Timer::repeating(REFRESH_INTERVAL, refresh);
  activationObserver_ = platform().runningApplications.observeActivation(refresh);
  refreshPosition();
}

void AssentaAssistant::refreshPosition() {
  if (!overlayController_) return;
  Rect settingsFrame;
  Rect visibleFrame;
  if (const auto snapshot = SettingsWindowLocator::frontmostWindow()) {
    settingsFrame = snapshot->frame;
    visibleFrame = snapshot->visibleFrame;
  } else if (!SettingsWindowLocator::isSystemSettingsFrontmost()) {
    overlayController_->hide();
    return;
  } else {
    const auto main = platform().screens.main();
    visibleFrame = main ? main->visibleFrame : NO_SCREEN;
    settingsFrame = {visibleFrame.x + INSET_ACROSS, visibleFrame.y + INSET_DOWN, visibleFrame.width - 2 * INSET_ACROSS,
                     visibleFrame.height - 2 * INSET_DOWN};
  }
  if (didPresentCurrentOverlay_) {
    overlayController_->follow(settingsFrame, visibleFrame);
    return;
  }
  overlayController_->present(pendingSourceFrameInScreen_, settingsFrame, visibleFrame);
  pendingSourceFrameInScreen_.reset();
  didPresentCurrentOverlay_ = true;
}

void AssentaAssistant::dismiss() {
  trackingTimer_.invalidate();
  activationObserver_.reset();
  advice_.reset();
  if (const auto controller = std::move(overlayController_)) controller->close();
  overlayController_.reset();
  activePanel_.reset();
  pendingSourceFrameInScreen_.reset();
  didPresentCurrentOverlay_ = false;
}

}  // namespace dormel
