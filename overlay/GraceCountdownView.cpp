#include "overlay/GraceCountdownView.h"

#include "overlay/BlockerOverlayView.h"

namespace dormel {

std::shared_ptr<GraceCountdownView> GraceCountdownView::create(const std::shared_ptr<OverlaySession>& session) {
  std::shared_ptr<GraceCountdownView> view(new GraceCountdownView(session));
  view->sessionObservation_ = session->observe([weak = view->weak_from_this()] {
    if (const auto self = weak.lock()) self->notifyObservers();
  });
  return view;
}

GraceCountdownView::GraceCountdownView(const std::shared_ptr<OverlaySession>& session) : session_(session) {}

int GraceCountdownView::secondsRemaining() const {
  const auto session = session_.lock();
  return session ? session->graceSecondsRemaining() : 0;
}

double GraceCountdownView::graceProgress() const {
  const auto session = session_.lock();
  return session && session->graceTotal() > 0 ? session->graceSecondsRemaining() / session->graceTotal() : 0;
}

Ink GraceCountdownView::urgencyColor() const {
  if (secondsRemaining() > 60) return ink::white(0.60);
  return secondsRemaining() > 30 ? ink::orange(1) : ink::red(1);
}

std::string GraceCountdownView::graceText() const {
  const int seconds = secondsRemaining();
  return (seconds < 60 ? std::to_string(seconds) + "s" : graceCountdownText(seconds)) + " remaining";
}

}  // namespace dormel
