// The QObject through which a QML scene reads one view. It holds no state of the view's: its properties read through,
// and one signal says that any of them may have changed. Main thread only.
#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <utility>

#include "platform/Time.h"

namespace dormel {

class ViewBridge : public QObject {
  Q_OBJECT
  /// Whether the view is on screen. Whatever would keep drawing by itself runs only while it is.
  Q_PROPERTY(bool showing READ showing NOTIFY showingChanged)
  /// Pixels to the point. What moves slowly moves by whole pixels, or its parts would not stay together.
  Q_PROPERTY(double pixelRatio READ pixelRatio NOTIFY pixelRatioChanged)

 public:
  ViewBridge() = default;
  ~ViewBridge() override = default;

  [[nodiscard]] bool showing() const { return showing_; }
  void setShowing(bool showing);
  [[nodiscard]] double pixelRatio() const { return pixelRatio_; }
  void setPixelRatio(double ratio);

  /// The clock that holds are measured by.
  void setUptime(std::function<Seconds()> uptime) { uptime_ = std::move(uptime); }

 signals:
  void changed();
  void showingChanged();
  void pixelRatioChanged();

 protected:
  [[nodiscard]] Seconds uptime() const { return uptime_ ? uptime_() : 0; }
  /// The view comes on screen for the first time.
  virtual void appear() {}

 private:
  bool showing_ = false;
  bool appeared_ = false;
  double pixelRatio_ = 1;
  std::function<Seconds()> uptime_;
};

}  // namespace dormel
