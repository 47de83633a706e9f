#include "overlay/BlockerWindow.h"

#include <utility>

#include "overlay/BlockerOverlayView.h"
#include "overlay/GraceCountdownView.h"
#include "platform/Platform.h"

namespace dormel {
namespace {

constexpr std::uint32_t ON_EVERY_SPACE = canJoinAllSpaces | stationary | ignoresCycle | fullScreenAuxiliary;

WindowStyle styleOf(BlockerWindow::Kind kind) {
  WindowStyle style;
  style.collectionBehavior = ON_EVERY_SPACE;
  switch (kind) {
    case BlockerWindow::Kind::blocker:
      style.level = WindowLevel::screenSaver;
      style.background = WindowBackground::black;
      style.isOpaque = true;
      style.canBecomeKey = true;
      break;
    case BlockerWindow::Kind::gracePill:
      style.level = WindowLevel::floating;
      style.hasShadow = true;
      style.isMovableByBackground = true;
      break;
    case BlockerWindow::Kind::permission:
      style.level = WindowLevel::floating;
      break;
  }
  return style;
}

}  // namespace

std::shared_ptr<BlockerWindow> BlockerWindow::blocker(const Screen& screen,
                                                      const std::shared_ptr<OverlaySession>& session) {
  std::shared_ptr<BlockerWindow> made(new BlockerWindow(Kind::blocker, screen.frame, session));
  made->window_->setContent(BlockerOverlayView::create(session));
  return made;
}

std::shared_ptr<BlockerWindow> BlockerWindow::gracePill(const std::shared_ptr<OverlaySession>& session) {
  std::shared_ptr<BlockerWindow> made(new BlockerWindow(Kind::gracePill, {0, 0, 400, 80}, session));
  made->window_->setContent(GraceCountdownView::create(session));
  return made;
}

std::shared_ptr<BlockerWindow> BlockerWindow::permission(std::shared_ptr<View> card) {
  std::shared_ptr<BlockerWindow> made(new BlockerWindow(Kind::permission, {0, 0, 520, 400}, nullptr));
  made->window_->setContent(std::move(card));
  return made;
}

BlockerWindow::BlockerWindow(Kind kind, const Rect& contentRect, const std::shared_ptr<OverlaySession>& session)
    : session_(session), kind_(kind), window_(platform().windows.makeWindow(styleOf(kind), contentRect)) {
  // The window may outlive this object inside an animation; the handler holds only what it needs.
  window_->setKeyHandler([weak = session_](const KeyEvent& event) {
    const auto owner = weak.lock();
    if (!owner) return;
    BypassController& controller = *owner->bypassController();
    switch (event.type) {
      case EventType::keyDown:
        controller.handleKeyDown(event.keyCode);
        break;
      case EventType::keyUp:
        controller.handleKeyUp(event.keyCode);
        break;
      case EventType::flagsChanged:
        controller.handleFlagsChanged(event.keyCode, event.flags);
        break;
      default:
        break;
    }
  });
}

}  // namespace dormel
