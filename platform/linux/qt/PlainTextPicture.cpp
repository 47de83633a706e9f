#include "platform/linux/qt/PlainTextPicture.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <utility>

namespace dormel {
namespace {

constexpr int TEXT_SIZE = 22;
constexpr int LINE_HEIGHT = 44;
constexpr int MARGIN = 24;

QFont font() {
  QFont font;
  font.setPixelSize(TEXT_SIZE);
  return font;
}

}  // namespace

PlainTextPicture::PlainTextPicture(std::unique_ptr<ViewBridge> bridge, const QColor& background,
                                   const std::function<void()>& onChange)
    : bridge_(std::move(bridge)), background_(background) {
  if (bridge_) QObject::connect(bridge_.get(), &ViewBridge::changed, bridge_.get(), onChange);
}

Size PlainTextPicture::fittingSize() const {
  if (!bridge_) return {};
  const QFontMetricsF metrics(font());
  Size size;
  for (const QString& line : bridge_->plainLines()) {
    size.width = std::max(size.width, metrics.horizontalAdvance(line) + 2 * MARGIN);
    size.height += LINE_HEIGHT;
  }
  return size;
}

void PlainTextPicture::setTarget(QImage& image, const Size& size) {
  image_ = &image;
  size_ = size;
}

void PlainTextPicture::setShowing(bool showing) {
  if (bridge_) bridge_->setShowing(showing);
}

bool PlainTextPicture::draw() {
  if (image_ == nullptr) return true;
  image_->fill(background_);
  if (!bridge_) return true;
  const QStringList lines = bridge_->plainLines();
  QPainter painter(image_);
  painter.setFont(font());
  // Light text in a dark outline is readable on whatever a clear window stands on.
  double top = (size_.height - static_cast<double>(lines.size()) * LINE_HEIGHT) / 2;
  for (const QString& line : lines) {
    const QRectF box(0, top, size_.width, LINE_HEIGHT);
    painter.setPen(Qt::black);
    painter.drawText(box.translated(1, 1), Qt::AlignCenter, line);
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, line);
    top += LINE_HEIGHT;
  }
  return true;
}

bool PlainTextPicture::pointer(PointerAction /*action*/, double /*x*/, double /*y*/) { return false; }

}  // namespace dormel
