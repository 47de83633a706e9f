// A panel's picture in memory that the compositor reads, and where it stands on a surface. A picture that lies in
// memory which can be shared is shown from there. Others are copied, as much as changed of them; so is one that is
// shown in a strength below 1, which is multiplied in, because a picture does not follow the strength of the surface
// beneath it. Main thread only.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "platform/common/Canvas.h"
#include "platform/linux/wayland/SharedMemory.h"

namespace dormel::wayland {

class Content {
 public:
  /// `isOnBlack`: it stands on a surface that is black in the same strength.
  Content(Connection& connection, bool isOnBlack) : connection_(connection), isOnBlack_(isOnBlack) {}
  Content(const Content&) = delete;
  Content& operator=(const Content&) = delete;
  ~Content() = default;

  /// Takes `changed` over from `pixels`; everything when the size is another than before. It is to be shown on
  /// `points` points.
  void update(const Pixels& pixels, const PixelRect& changed, const Size& points);
  /// 0 invisible to 1 as it is.
  void setAlpha(double alpha);
  /// Stands in the middle of `parent` from now on, or at its top left corner; null: nowhere.
  void standOn(wl_surface* parent);
  /// Moves it for a parent of this size in points; `centred` or at the top left corner. The parent is committed by its
  /// owner.
  void layOut(const Size& parent, bool centred);
  /// Whether `layOut` would move it.
  [[nodiscard]] bool isMoved(const Size& parent, bool centred) const { return at(parent, centred) != at_; }
  void clear();

 private:
  [[nodiscard]] std::pair<int, int> at(const Size& parent, bool centred) const;
  void present(const Pixels& pixels, PixelBuffer& buffer);
  void show(const PixelRect& damage);
  [[nodiscard]] PixelBuffer* freeBuffer();
  /// Takes the picture over at full strength, to be weakened from there.
  void keepWhole(const Pixels& pixels);
  void showShared(const PixelRect& damage);
  /// Forgets what nobody shows any more.
  void tidy();
  void copy(const Pixels& from, PixelBuffer& to, const PixelRect& area) const;

  Connection& connection_;
  bool isOnBlack_;
  int width_ = 0;
  int height_ = 0;
  Size points_;
  double alpha_ = 1;
  std::vector<std::unique_ptr<PixelBuffer>> buffers_;
  SharedFrames sharedFrames_{connection_.globals().shm.get()};
  std::vector<std::unique_ptr<Buffer>> frames_;  ///< in memory that is shared
  Buffer* newest_ = nullptr;                     ///< of them, if the latest picture is one
  Buffer* latest_ = nullptr;                     ///< what is shown
  std::vector<std::uint32_t> whole_;             ///< the picture at full strength, while it is shown at less
  std::pair<int, int> at_;                       ///< on its parent
  Owned<wl_surface> surface_;
  Owned<wl_subsurface> place_;
  Owned<wp_viewport> viewport_;
};

}  // namespace dormel::wayland
