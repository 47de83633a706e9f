// Pixels that the compositor reads. 32-bit premultiplied ARGB in the machine's byte order. Main thread only.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/common/Canvas.h"
#include "platform/linux/wayland/Connection.h"

namespace dormel::wayland {

/// What a surface can show.
class Buffer {
 public:
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  virtual ~Buffer() = default;

  [[nodiscard]] wl_buffer* handle() const { return handle_.get(); }
  [[nodiscard]] virtual Pixels pixels() const = 0;

  /// From the moment it is given to a surface until the compositor has let go of it.
  [[nodiscard]] bool isBusy() const { return isBusy_; }
  void setBusy() { isBusy_ = true; }
  /// Called when the compositor has let go of it, which may be its end.
  void setOnRelease(Task onRelease) { onRelease_ = std::move(onRelease); }

 protected:
  Buffer() = default;
  void own(wl_buffer* handle);

 private:
  Owned<wl_buffer> handle_;
  bool isBusy_ = false;
  Task onRelease_;
};

/// One picture's memory of our own.
class PixelBuffer final : public Buffer {
 public:
  /// Null when there is no memory for it. Its pixels are all transparent at first.
  [[nodiscard]] static std::unique_ptr<PixelBuffer> create(wl_shm* shm, int width, int height);
  ~PixelBuffer() override;

  [[nodiscard]] Pixels pixels() const override { return {pixels_, width_, height_, width_}; }
  [[nodiscard]] std::uint32_t* row(int y) { return pixels_ + std::size_t(y) * std::size_t(width_); }

  /// What has changed in the picture since this buffer held the whole of it.
  PixelRect stale;

 private:
  PixelBuffer(int width, int height) : width_(width), height_(height) {}

  std::uint32_t* pixels_ = nullptr;
  int width_;
  int height_;
};

/// Pictures in a painter's memory, which the compositor reads where they lie.
class SharedFrames {
 public:
  explicit SharedFrames(wl_shm* shm) : shm_(shm) {}

  /// Keeps the painter from painting over `pixels` for as long as it is there. Null where they lie in no memory that a
  /// compositor could be given.
  [[nodiscard]] std::unique_ptr<Buffer> frame(const Pixels& pixels);

 private:
  wl_shm* shm_;
  std::shared_ptr<const void> memory_;  ///< what the pool is of
  Owned<wl_shm_pool> pool_;
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

  /// A square with room around its pixel (1, 1), black of `alpha`: 0 transparent to 1 opaque. Null where there is no
  /// memory.
  [[nodiscard]] wl_buffer* black(double alpha, bool isLarger);

 private:
  static constexpr std::size_t STRENGTHS = 256;

  Owned<wl_shm_pool> pool_;
  std::array<std::array<Owned<wl_buffer>, STRENGTHS>, 2> buffers_;
};

}  // namespace dormel::wayland
