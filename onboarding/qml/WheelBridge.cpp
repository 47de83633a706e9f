#include "onboarding/qml/WheelBridge.h"

#include <QGuiApplication>

namespace dormel {
namespace {

// A notch of a common wheel is 120 eighths of a degree and counts as 15 points.
constexpr double ANGLE_PER_POINT = 8;

/// On X11 the number of pixels is whatever the driver takes for one.
bool knowsPixels() { return QGuiApplication::platformName() != QLatin1String("xcb"); }

}  // namespace

WheelBridge::WheelBridge(const std::shared_ptr<WheelQuestionBeat>& screen)
    : BeatBridge(screen, QStringLiteral("WheelBeat"), {&screen->headline, nullptr, &screen->button}),
      wheel_(screen->wheel),
      whisper_(nullptr) {}

WheelBridge::WheelBridge(const std::shared_ptr<ScheduleBeat>& screen)
    : BeatBridge(screen, QStringLiteral("WheelBeat"), {&screen->headline, nullptr, &screen->button}),
      wheel_(screen->wheel),
      whisper_(&screen->whisper) {}

QStringList WheelBridge::labels() const {
  QStringList labels;
  for (const OnbWheel::Option& option : wheel_.options()) labels << QString::fromStdString(option.label);
  return labels;
}

OnbTextValue WheelBridge::whisper() const {
  return whisper_ != nullptr ? OnbTextValue::line(*whisper_) : OnbTextValue();
}

void WheelBridge::select(int row) { wheel_.select(wheel_.options().at(static_cast<std::size_t>(row)).value); }

void WheelBridge::scroll(const QPointF& pixels, const QPointF& angle, bool byTicks) {
  if (byTicks) {
    wheel_.turn(angle.y());
  } else {
    wheel_.scroll(knowsPixels() && !pixels.isNull() ? pixels.y() : angle.y() / ANGLE_PER_POINT);
  }
}

}  // namespace dormel
