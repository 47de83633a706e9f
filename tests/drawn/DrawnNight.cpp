#include "tests/drawn/DrawnNight.h"

#include <QCoreApplication>
#include <cassert>
#include <cmath>
#include <utility>

#include "core/Config.h"
#include "overlay/qml/OverlayScenes.h"

namespace dormel {
namespace {

constexpr Seconds FRAME = 0.02;

QmlSceneRegistry overlayScenes() {
  QmlSceneRegistry registry;
  registerOverlayScenes(registry);
  return registry;
}

PropertyListValue value(auto what) { return {what}; }

}  // namespace

void SteppedAnimations::step(qint64 milliseconds) {
  // Animations that were just started or stopped are entered and left in posted events.
  QCoreApplication::sendPostedEvents();
  now_ += milliseconds;
  if (isRunning()) advanceAnimation();
  QCoreApplication::sendPostedEvents();
}

void SteppedAnimations::start() {
  now_ = 0;
  QAnimationDriver::start();
}

DrawnView::DrawnView(QmlCanvasFactory& factory, std::shared_ptr<View> view, double scale, std::optional<Size> size)
    : canvas_(static_cast<QmlCanvas*>(factory.make(std::move(view)).release())), scale_(scale) {
  canvas_->setOnFrame([this](const Pixels& pixels, const PixelRect& changed) {
    const auto* bytes = reinterpret_cast<const uchar*>(pixels.data);
    picture_ =
        QImage(bytes, pixels.width, pixels.height, pixels.stride * 4, QImage::Format_ARGB32_Premultiplied).copy();
    picture_.setDevicePixelRatio(scale_);
    lastChange_ = changed;
    ++frames_;
  });
  canvas_->resize(size ? *size : canvas_->fittingSize(), scale);
  canvas_->setShowing(true);
}

const QImage& DrawnView::picture() {
  while (canvas_->isFramePending()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return picture_;
}

DrawnNight::DrawnNight(const Options& options)
    : machine({.seed = options.seed, .start = "2026-11-16 12:00:00", .processRuns = true}), factory(overlayScenes()) {
  machine.bundle.setPath(DORMEL_BUNDLE);
  machine.setWallClock(options.at);
  for (const auto& [key, legend] : {std::pair{58, "Alt"}, {61, "Alt"}, {55, "Super"}, {54, "Menu / Ctrl"}}) {
    machine.layout.setLegend(static_cast<KeyCode>(key), legend);
  }
  machine.screens.plug("DP-1", {0, 0, 1920, 1080});
  machine.defaults.writeFromOutside(defaultsKey::onboardingComplete, value(true));
  machine.defaults.writeFromOutside(defaultsKey::blockStartHour, value(std::int64_t{22}));
  machine.defaults.writeFromOutside(defaultsKey::blockEndHour, value(std::int64_t{7}));
  machine.defaults.writeFromOutside(defaultsKey::use24HourClock, value(options.use24HourClock));
  session = ScreenManager::create();
  session->activate(true);
  machine.settle();
}

void DrawnNight::pass(Seconds duration) {
  const auto frames = static_cast<int>(std::lround(duration / FRAME));
  for (int i = 0; i < frames; ++i) {
    machine.advance(FRAME);
    animations_.step(std::lround(FRAME * 1000));
  }
}

void DrawnNight::holdKeys(std::size_t count) {
  const auto& keys = session->bypassController()->requiredKeys();
  for (std::size_t i = 0; i < count && i < keys.size(); ++i) machine.keyboard.press(keys[i].keyCode);
  machine.settle();
}

std::shared_ptr<View> DrawnNight::view() const {
  assert(!session->windows().empty());
  return static_cast<SimWindow&>(session->windows().front()->window()).content();
}

}  // namespace dormel
