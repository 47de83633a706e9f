// How a scene that has no window on any display becomes pixels: in software, or by the graphics driver into a buffer
// of its own that is read back. Which of the two is the whole process's choice, see SceneGraph.h. Main thread only.
#pragma once

#include <QImage>
#include <QQuickRenderControl>
#include <QQuickWindow>
#include <functional>
#include <memory>
#include <optional>

#include "platform/common/PixelRect.h"

namespace dormel {

/// Serves one window and its control, and outlives both.
class SceneRenderer {
 public:
  virtual ~SceneRenderer() = default;

  /// Renders into `image` from now on, whose device pixel ratio is the scale. Its pixels are the renderer's alone until
  /// the next call.
  virtual void setTarget(QQuickWindow& window, QImage& image) = 0;
  /// Brings the target up to date. False when that cannot be done and will not work later either; the target may hold
  /// anything then.
  [[nodiscard]] virtual bool render(QQuickRenderControl& control) = 0;
  /// Outside of this rectangle of the target, in pixels, the last `render` changed nothing. Nothing where it cannot
  /// tell.
  [[nodiscard]] virtual std::optional<PixelRect> drawn() const { return {}; }
};

using MakeSceneRenderer = std::function<std::unique_ptr<SceneRenderer>()>;

[[nodiscard]] std::unique_ptr<SceneRenderer> makeSoftwareRenderer();
/// Talks to no driver before its first frame.
[[nodiscard]] std::unique_ptr<SceneRenderer> makeDriverRenderer();

}  // namespace dormel
