// A simulated machine whose views are really drawn. Logic and animations run in virtual time and stand still in
// between, so that a picture of any moment can be had, always the same one.
//
// Needs a QGuiApplication; one DrawnMachine at a time.
#pragma once

#include <QAnimationDriver>
#include <QImage>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/qt/QmlCanvas.h"
#include "platform/linux/qt/QmlCanvasFactory.h"
#include "platform/linux/qt/SceneLoader.h"
#include "platform/linux/qt/TextsTranslator.h"
#include "platform/sim/SimMachine.h"

namespace dormel {

/// Moves Qt's animations when told to.
class SteppedAnimations : public QAnimationDriver {
 public:
  SteppedAnimations() { install(); }
  ~SteppedAnimations() override { uninstall(); }
  void step(qint64 milliseconds);
  /// Since it was started.
  [[nodiscard]] qint64 elapsed() const override { return now_; }

 protected:
  void start() override;

 private:
  qint64 now_ = 0;
};

/// A view on a canvas, and what the canvas told about it.
class DrawnView {
 public:
  /// At `size` points, or else at the size that fits.
  DrawnView(QmlCanvasFactory& factory, std::shared_ptr<View> view, double scale, std::optional<Size> size = {});

  /// Draws what is to be drawn, and answers the picture.
  const QImage& picture();
  [[nodiscard]] QmlCanvas& canvas() { return *canvas_; }
  /// Frames reported so far, and what the last of them changed.
  [[nodiscard]] int frames() const { return frames_; }
  [[nodiscard]] const PixelRect& lastChange() const { return lastChange_; }

 private:
  std::unique_ptr<QmlCanvas> canvas_;
  double scale_;
  QImage picture_;
  int frames_ = 0;
  PixelRect lastChange_;
};

class DrawnMachine {
 public:
  explicit DrawnMachine(std::uint64_t seed = 1);

  /// Lets time pass for everything, in frames of 20 ms.
  void pass(Seconds duration);
  /// Lets time pass for logic alone: animations stand where they stood.
  void skip(Seconds duration) { machine.advance(duration); }

  /// Whether anything is moving, so that something would run on every frame.
  [[nodiscard]] bool isAnimating() const { return animations_.isRunning(); }

  /// Says what the program says on a Linux desktop: on one that lets nobody lock it, where it has most to say.
  void speakAsLinux();

  /// Speaks that language, of those that the program has: "de".
  void speak(const std::string& language);

  /// Stores an answer to every question of the first run.
  void answerTheFirstRun(const char* keeps = "scrolling");

  /// Puts a value into the settings, as another process would.
  void store(const char* key, PropertyListValue value) { machine.defaults.writeFromOutside(key, std::move(value)); }

  SimMachine machine;
  std::shared_ptr<SceneLoader> stage;
  QmlCanvasFactory factory;

 private:
  TextsTranslator translator_;
  SteppedAnimations animations_;
};

}  // namespace dormel
