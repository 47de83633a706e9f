#include "platform/linux/wayland/SharedMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

constexpr int PIXEL = 4;
constexpr int LARGER_SIDE = 4;
constexpr std::size_t SQUARE = std::size_t{LARGER_SIDE} * LARGER_SIDE;

/// A file in memory of that size, which nobody can shrink under the compositor; -1 when there is none to be had.
int makeFile(std::size_t size) {
  const int file = ::memfd_create("dormel", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  if (file >= 0 && ::ftruncate(file, static_cast<off_t>(size)) != 0) {
    ::close(file);
    return -1;
  }
  return file;
}

}  // namespace

std::unique_ptr<PixelBuffer> PixelBuffer::create(wl_shm* shm, int width, int height) {
  const auto size = std::size_t(width) * std::size_t(height) * PIXEL;
  const int file = makeFile(size);
  if (file < 0) return nullptr;
  void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (memory == MAP_FAILED) {
    ::close(file);
    return nullptr;
  }
  std::unique_ptr<PixelBuffer> buffer(new PixelBuffer(width, height));
  buffer->pixels_ = static_cast<std::uint32_t*>(memory);
  buffer->stale = {0, 0, width, height};
  wl_shm_pool* pool = wl_shm_create_pool(shm, file, static_cast<int>(size));
  buffer->handle_.reset(wl_shm_pool_create_buffer(pool, 0, width, height, width * PIXEL, WL_SHM_FORMAT_ARGB8888));
  wl_shm_pool_destroy(pool);
  ::close(file);
  static constexpr wl_buffer_listener LISTENER{
      [](void* self, wl_buffer*) { static_cast<PixelBuffer*>(self)->isBusy_ = false; }};
  wl_buffer_add_listener(buffer->handle_.get(), &LISTENER, buffer.get());
  return buffer;
}

PixelBuffer::~PixelBuffer() {
  if (pixels_ != nullptr) ::munmap(pixels_, std::size_t(width_) * std::size_t(height_) * PIXEL);
}

Shades::Shades(wl_shm* shm) {
  // The smaller squares use the beginning of the larger ones.
  std::vector<std::uint32_t> pixels(STRENGTHS * SQUARE);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint32_t>(i / SQUARE) << 24;
  const std::size_t size = pixels.size() * PIXEL;
  const int file = makeFile(size);
  if (file < 0) return;
  if (::write(file, pixels.data(), size) == static_cast<ssize_t>(size)) {
    pool_ = wl_shm_create_pool(shm, file, static_cast<int>(size));
  }
  ::close(file);
}

Shades::~Shades() {
  if (pool_ != nullptr) wl_shm_pool_destroy(pool_);
}

wl_buffer* Shades::black(double alpha, bool isLarger) {
  if (pool_ == nullptr) return nullptr;
  const auto shade = static_cast<std::size_t>(std::lround(std::clamp(alpha, 0.0, 1.0) * (STRENGTHS - 1)));
  auto& buffer = buffers_.at(isLarger ? 1 : 0).at(shade);
  if (!buffer) {
    const int side = isLarger ? LARGER_SIDE : LARGER_SIDE - 1;
    buffer.reset(wl_shm_pool_create_buffer(pool_, static_cast<int>(shade * SQUARE) * PIXEL, side, side, side * PIXEL,
                                           WL_SHM_FORMAT_ARGB8888));
  }
  return buffer.get();
}

}  // namespace dormel::wayland
