#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

void ViewBridge::setShowing(bool showing) {
  if (showing_ == showing) return;
  showing_ = showing;
  emit showingChanged();
  if (!showing || appeared_) return;
  appeared_ = true;
  appear();
}

void ViewBridge::setPixelRatio(double ratio) {
  if (pixelRatio_ == ratio) return;
  pixelRatio_ = ratio;
  emit pixelRatioChanged();
}

}  // namespace dormel
