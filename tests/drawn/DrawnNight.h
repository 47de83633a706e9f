// A real session on a simulated machine whose views are really drawn. Logic and animations run in virtual time and
// stand still in between, so that a picture of any moment can be had, always the same one.
//
// Needs a QGuiApplication; one DrawnNight at a time.
#pragma once

#include <QAnimationDriver>
#include <QImage>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/ScreenManager.h"
#include "platform/linux/qt/QmlCanvas.h"
#include "platform/linux/qt/QmlCanvasFactory.h"
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

class DrawnNight {
 public:
  struct Options {
    std::string at = "2026-11-16 23:05:00";
    bool use24HourClock = true;
    std::uint64_t seed = 1;
  };

  DrawnNight() : DrawnNight(Options{}) {}
  explicit DrawnNight(const Options& options);

  /// Lets time pass for everything, in frames of 20 ms.
  void pass(Seconds duration);
  /// Lets time pass for logic alone: animations stand where they stood.
  void skip(Seconds duration) { machine.advance(duration); }

  /// Whether anything is moving, so that something would run on every frame.
  [[nodiscard]] bool isAnimating() const { return animations_.isRunning(); }

  void holdKeys(std::size_t count = BYPASS_KEY_COUNT);

  /// The view in the session's first window.
  [[nodiscard]] std::shared_ptr<View> view() const;

  SimMachine machine;
  std::shared_ptr<ScreenManager> session;
  QmlCanvasFactory factory;

 private:
  SteppedAnimations animations_;
};

}  // namespace dormel
