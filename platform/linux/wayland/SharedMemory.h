// Pixels that the compositor reads. 32-bit premultiplied ARGB in the machine's byte order. Main thread only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/common/Canvas.h"
#include "platform/linux/wayland/Connection.h"

namespace dormel::wayland {

/// One picture's memory, shared with the compositor.
class PixelBuffer {
 public:
  /// Null when there is no memory for it. Its pixels are all transparent at first.
  [[nodiscard]] static std::unique_ptr<PixelBuffer> create(wl_shm* shm, int width, int height);
  PixelBuffer(const PixelBuffer&) = delete;
  PixelBuffer& operator=(const PixelBuffer&) = delete;
  ~PixelBuffer();

  [[nodiscard]] wl_buffer* handle() const { return handle_.get(); }
  [[nodiscard]] std::uint32_t* row(int y) { return pixels_ + std::size_t(y) * std::size_t(width_); }
  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }

  /// From the moment it is given to a surface until the compositor has let go of it.
  [[nodiscard]] bool isBusy() const { return isBusy_; }
  void setBusy() { isBusy_ = true; }

  /// What has changed in the picture since this buffer held the whole of it.
  PixelRect stale;

 private:
  PixelBuffer(int width, int height) : width_(width), height_(height) {}

  Owned<wl_buffer> handle_;
  std::uint32_t* pixels_ = nullptr;
  int width_;
  int height_;
  bool isBusy_ = false;
};

/// Black at every strength: what a surface of any size is filled with, by a viewport on a pixel inside of a small
/// square. One pixel alone does not do: a compositor that rounds finds none at a large surface's edges. And one that
/// keeps what it has of a buffer of the same size takes over no more than the viewport shows, so squares of two sizes
/// take turns.
class Shades {
 public:
  explicit Shades(wl_shm* shm);
  Shades(const Shades&) = delete;
  Shades& operator=(const Shades&) = delete;
  ~Shades();

  /// A square with room around its pixel (1, 1), black of `alpha`: 0 transparent to 1 opaque. Null where there is no
  /// memory.
  [[nodiscard]] wl_buffer* black(double alpha, bool isLarger);

 private:
  static constexpr std::size_t STRENGTHS = 256;

  wl_shm_pool* pool_ = nullptr;
  std::array<std::array<Owned<wl_buffer>, STRENGTHS>, 2> buffers_;
};

}  // namespace dormel::wayland
