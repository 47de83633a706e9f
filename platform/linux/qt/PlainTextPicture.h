// What a view says, as plain centred lines, drawn when its scene could not be loaded: somebody is sitting in front of
// a locked screen and has to know which keys to hold. Main thread only.
#pragma once

#include <memory>

#include "platform/linux/qt/Picture.h"
#include "platform/linux/qt/ViewBridge.h"

namespace dormel {

class PlainTextPicture : public Picture {
 public:
  /// Without a bridge the picture is empty.
  PlainTextPicture(std::unique_ptr<ViewBridge> bridge, const QColor& background, const std::function<void()>& onChange);

  [[nodiscard]] Size fittingSize() const override;
  void setTarget(QImage& image, const Size& size) override;
  void setShowing(bool showing) override;
  bool draw() override;
  bool pointer(PointerAction action, double x, double y) override;

 private:
  std::unique_ptr<ViewBridge> bridge_;
  QColor background_;
  QImage* image_ = nullptr;
  Size size_;
};

}  // namespace dormel
