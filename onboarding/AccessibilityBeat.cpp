#include "onboarding/AccessibilityBeat.h"

#include <utility>

#include "assistant/AssentaAssistant.h"
#include "platform/Accessibility.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/Texts.h"

namespace dormel {
namespace {

constexpr Seconds POLL_INTERVAL = 1.0;

}  // namespace

AccessibilityBeat::AccessibilityBeat(OnbAction go)
    : OnboardingScreen(OnboardingBeat::accessibility),
      button(*this, 3.0, {translate("Continue")},
             [go = std::move(go)] {
               AssentaAssistant::shared().dismiss();
               go();
             }),
      granted_(this, platform().accessibility.isProcessTrusted()) {
  button.setEnabled(granted_);
}

void AccessibilityBeat::onAppear() {
  poll_ = Timer::repeating(POLL_INTERVAL, [this] { look(); });
}

void AccessibilityBeat::onDisappear() {
  poll_.invalidate();
  AssentaAssistant::shared().dismiss();
}

void AccessibilityBeat::look() {
  const bool trusted = platform().accessibility.isProcessTrusted();
  if (trusted && !granted_) {
    AssentaAssistant::shared().dismiss();
    platform().application.activateIgnoringOthers();
  }
  granted_ = trusted;
  button.setEnabled(trusted);
}

void AccessibilityBeat::grant() const {
  if (!isShown() || !row.reveal.on() || grantTitle().empty()) return;
  AssentaAssistant::shared().present(AssentaPanel::accessibility, AssentaHostApp::current(platform().bundle), {});
}

}  // namespace dormel
