#include "challenge/KeyInterceptor.h"

#include <utility>

#include "platform/Accessibility.h"
#include "platform/Platform.h"
#include "platform/Process.h"

namespace dormel {
namespace {

constexpr Seconds HEALTH_INTERVAL = 5.0;

}  // namespace

std::shared_ptr<KeyInterceptor> KeyInterceptor::create(std::shared_ptr<BypassController> bypassController) {
  return std::shared_ptr<KeyInterceptor>(new KeyInterceptor(std::move(bypassController)));
}

KeyInterceptor::KeyInterceptor(std::shared_ptr<BypassController> bypassController)
    : bypassController_(std::move(bypassController)) {}

KeyInterceptor::~KeyInterceptor() = default;

bool KeyInterceptor::start() {
  if (!platform().accessibility.isProcessTrusted()) {
    platform().output.print("Accessibility permission not granted. Event tap unavailable.");
    return false;
  }
  // The tap does not own its interceptor: an event in flight after the owner let go finds nobody.
  eventTap_ = platform().eventTaps.create([weak = weak_from_this()](const KeyEvent& event) {
    const auto self = weak.lock();
    return self ? self->keyEventCallback(event) : TapVerdict::pass;
  });
  if (!eventTap_) {
    platform().output.print("Failed to create event tap. Is Accessibility permission granted?");
    return false;
  }
  runLoopSource_ = eventTap_->makeRunLoopSource();
  eventTap_->enable(true);
  const auto checkHealth = [weak = weak_from_this()] {
    const auto self = weak.lock();
    if (self && self->eventTap_ && !self->eventTap_->isEnabled()) self->eventTap_->enable(true);
  };
  healthTimer_ = Timer::repeating(HEALTH_INTERVAL, checkHealth, POLL_ACCURACY);
  return true;
}

TapVerdict KeyInterceptor::keyEventCallback(const KeyEvent& event) {
  // The system only reports here that it disabled the tap; taking it back is the health check's.
  if (event.type >= EventType::tapDisabledByTimeout) return TapVerdict::pass;
  return handleEvent(event);
}

TapVerdict KeyInterceptor::handleEvent(const KeyEvent& event) {
  if (onEscape_ && event.type == EventType::keyDown && event.keyCode == keyCode::escape) {
    platform().runLoop.async(onEscape_);
    return TapVerdict::swallow;
  }
  switch (event.type) {
    case EventType::flagsChanged:
      bypassController_->handleFlagsChanged(event.keyCode, event.flags);
      return TapVerdict::swallow;
    case EventType::keyUp:
      bypassController_->handleKeyUp(event.keyCode);
      return TapVerdict::swallow;
    case EventType::keyDown:
      bypassController_->handleKeyDown(event.keyCode);
      return TapVerdict::swallow;
    default:
      return TapVerdict::pass;
  }
}

void KeyInterceptor::stop() {
  healthTimer_.invalidate();
  if (eventTap_) eventTap_->enable(false);
  runLoopSource_.reset();
  eventTap_.reset();
}

}  // namespace dormel
