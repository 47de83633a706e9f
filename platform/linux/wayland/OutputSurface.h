// A surface of ours on one output, black at some strength or clear, with room for a picture. What makes the compositor
// show it, and how large, is the business of its role: part of the desktop's overlay, or the lock's. Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "platform/linux/wayland/Outputs.h"
#include "platform/linux/wayland/SharedMemory.h"

namespace dormel::wayland {

class OutputSurface {
 public:
  OutputSurface(Connection& connection, Shades& shades, std::shared_ptr<Output> output);
  OutputSurface(const OutputSurface&) = delete;
  OutputSurface& operator=(const OutputSurface&) = delete;
  ~OutputSurface();

  [[nodiscard]] wl_surface* surface() const { return surface_.get(); }
  [[nodiscard]] const std::shared_ptr<Output>& output() const { return output_; }
  /// In points; empty until the compositor has said it.
  [[nodiscard]] const Size& size() const { return size_; }
  /// Pixels to the point, a fraction where the compositor tells it.
  [[nodiscard]] double scale() const { return scale_; }

  /// How black it is: 0 clear to 1 opaque. Shown with the next commit.
  void setBlack(double alpha) { black_ = alpha; }
  void commit();

  /// Called when the size or the scale is another.
  void setOnLayout(Task onLayout) { onLayout_ = std::move(onLayout); }

 protected:
  /// The role says what size the compositor wants; answers are committed with it.
  void configured(const Size& size);
  [[nodiscard]] Connection& connection() const { return connection_; }

 private:
  Connection& connection_;
  Shades& shades_;
  std::shared_ptr<Output> output_;
  Owned<wl_surface> surface_;
  Owned<wp_viewport> viewport_;
  Owned<wp_fractional_scale_v1> fraction_;
  Size size_;
  double scale_;
  double black_ = 0;
  double shown_ = -1;  ///< as of the last commit
  bool isLarger_ = false;
  Task onLayout_;
};

enum class KeyboardUse { none, exclusive };

/// Where a surface of the desktop's overlay stands. All of the output without a corner; else at a corner, beside bars.
struct Placement {
  struct Corner {
    bool right = false;
    bool bottom = false;
    int horizontal = 0;  ///< points from that edge
    int vertical = 0;
    Size size;
  };
  std::optional<Corner> corner;
};

/// A surface above all windows.
class LayerShellSurface final : public OutputSurface {
 public:
  /// `onClosed`: the compositor took it down; it shows nothing any more.
  LayerShellSurface(Connection& connection, Shades& shades, const std::shared_ptr<Output>& output,
                    const Placement& placement, KeyboardUse use, Task onClosed);

  /// Commits.
  void place(const Placement& placement);
  void setKeyboardUse(KeyboardUse use);
  /// Gives the keyboard up and asks for it again, which takes it back from whoever got it meanwhile. Nothing unless it
  /// was exclusive.
  void askForKeyboardAgain();

 private:
  void arrange(const Placement& placement);

  KeyboardUse use_;
  Task onClosed_;
  Owned<zwlr_layer_surface_v1> role_;
};

/// A surface of the session lock, opaque black from its first frame.
class SessionLockSurface final : public OutputSurface {
 public:
  SessionLockSurface(Connection& connection, Shades& shades, std::shared_ptr<Output> output, ext_session_lock_v1* lock);

 private:
  Owned<ext_session_lock_surface_v1> role_;
};

}  // namespace dormel::wayland
