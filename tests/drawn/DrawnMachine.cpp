#include "tests/drawn/DrawnMachine.h"

#include <QCoreApplication>
#include <cmath>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "assistant/qml/AssistantScenes.h"
#include "core/Config.h"
#include "onboarding/OnboardingModel.h"
#include "onboarding/qml/OnboardingScenes.h"
#include "overlay/qml/OverlayScenes.h"
#include "platform/linux/DesktopWording.h"
#include "settings/qml/SettingsScenes.h"
#include "ui/qml/UiModule.h"

namespace dormel {
namespace {

constexpr Seconds FRAME = 0.02;

QmlSceneRegistry allScenes() {
  QmlSceneRegistry registry;
  registerUiScenes(registry);
  registerOverlayScenes(registry);
  registerAssistantScenes(registry);
  registerSettingsScenes(registry);
  registerOnboardingScenes(registry);
  return registry;
}

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
  QCoreApplication::sendPostedEvents();  // scenes hear of a change at the end of its turn
  while (canvas_->isFramePending()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return picture_;
}

DrawnMachine::DrawnMachine(std::uint64_t seed)
    : machine({.seed = seed, .start = "2026-11-16 12:00:00", .processRuns = true}),
      stage(std::make_shared<SceneLoader>(allScenes())),
      factory(stage) {
  QCoreApplication::installTranslator(&translator_);
  machine.bundle.setPath(DORMEL_BUNDLE);
  machine.screens.plug("DP-1", {0, 0, 1920, 1080});
  store(defaultsKey::onboardingComplete, {true});
  store(defaultsKey::blockStartHour, {std::int64_t{22}});
  store(defaultsKey::blockEndHour, {std::int64_t{7}});
}

void DrawnMachine::speakAsLinux() {
  static const DesktopWording wording([] {
    return DesktopFacts{DisplayKind::x11, true, true, "Startup Applications", "~/.config/autostart/x.desktop"};
  });
  machine.wording.speakAs(wording);
}

void DrawnMachine::speak(const std::string& language) {
  if (language == "en") return;
  std::ifstream file(std::string(DORMEL_BUNDLE "/Contents/Resources/texts/") + language + ".mo", std::ios::binary);
  auto catalog = Catalog::parse(std::string{std::istreambuf_iterator<char>(file), {}});
  if (!catalog) throw std::runtime_error("no texts in " + language);
  machine.texts.setLanguage(language, std::move(*catalog));
}

void DrawnMachine::answerTheFirstRun(const char* keeps) {
  store(defaultsKey::onboardingLate, {std::int64_t{26}});
  store(defaultsKey::onboardingNights, {4.0});
  store(defaultsKey::onboardingWant, {std::int64_t{23}});
  store(defaultsKey::onboardingKeeps, {PropertyListArray{{std::string(keeps)}}});
}

void DrawnMachine::pass(Seconds duration) {
  const auto frames = static_cast<int>(std::lround(duration / FRAME));
  for (int i = 0; i < frames; ++i) {
    machine.advance(FRAME);
    animations_.step(std::lround(FRAME * 1000));
  }
}

}  // namespace dormel
