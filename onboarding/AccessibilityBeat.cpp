#include "onboarding/AccessibilityBeat.h"

#include <utility>

#include "assistant/AssentaAssistant.h"
#include "platform/Accessibility.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/Platform.h"
#include "platform/Texts.h"
#include "platform/Wording.h"

namespace dormel {
namespace {

constexpr Seconds POLL_INTERVAL = 1.0;

}  // namespace

AccessibilityBeat::AccessibilityBeat(OnbAction go) : OnboardingScreen(OnboardingBeat::accessibility) {
  const PermissionWords words = platform().wording.permission();
  add(Kind::headline, 0.3, translate("Let's test Dormel."));
  add(Kind::sub, 1.2, words.need, {.above = 16});
  row_ = &add(Kind::permission, 2.2, words.name, {.above = 40, .size = 400}, [this](std::size_t) { grant(); });
  advice_ = &add(Kind::sub, 2.2, {}, {.above = 24});
  button_ = &addButton(3.0, translate("Continue"), {.above = 40}, [go = std::move(go)] {
    AssentaAssistant::shared().dismiss();
    go();
  });
  show(platform().accessibility.isProcessTrusted());
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
  show(trusted);
}

void AccessibilityBeat::show(bool granted) {
  granted_ = granted;
  const PermissionWords words = platform().wording.permission();  // what leads to it may change on the way
  row_->parts = {granted ? "" : words.grantButton};
  row_->chosen = granted ? std::vector<std::size_t>{0} : std::vector<std::size_t>{};
  advice_->text = granted ? "" : words.advice;
  button_->enabled = granted;
}

void AccessibilityBeat::grant() const {
  if (row_->parts->front().empty()) return;  // there is no such button
  AssentaAssistant::shared().present(AssentaPanel::accessibility, AssentaHostApp::current(platform().bundle), {});
}

}  // namespace dormel
