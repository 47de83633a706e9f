#include "overlay/GraceCountdownView.h"

#include "overlay/BlockerOverlayView.h"
#include "platform/Texts.h"

namespace dormel {

std::shared_ptr<GraceCountdownView> GraceCountdownView::create(const std::shared_ptr<OverlaySession>& session) {
  std::shared_ptr<GraceCountdownView> view(new GraceCountdownView(session));
  view->sessionObservation_ = session->observe([weak = view->weak_from_this()] {
    if (const auto self = weak.lock()) self->notifyObservers();
  });
  return view;
}

GraceCountdownView::GraceCountdownView(const std::shared_ptr<OverlaySession>& session) : session_(session) {}

GraceCountdownState GraceCountdownView::state() const {
  const auto session = session_.lock();
  const int seconds = session ? session->graceSecondsRemaining() : 0;
  GraceCountdownState state;
  if (session && session->graceTotal() > 0) state.progress = seconds / session->graceTotal();
  state.urgencyColor = seconds > 60 ? color::white(0.60) : seconds > 30 ? color::orange(1) : color::red(1);
  state.text = translate("%1 remaining", {seconds < 60 ? std::to_string(seconds) + "s" : graceCountdownText(seconds)});
  return state;
}

}  // namespace dormel
