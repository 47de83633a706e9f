#include "platform/linux/wayland/SharedMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
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

/// Compositors map what they are given for writing, too, and throw out whom that fails for.
bool canBeGiven(const SharedPixels& shared, std::size_t needed) {
  constexpr int NO_WRITING = F_SEAL_WRITE | F_SEAL_FUTURE_WRITE;
  const int seals = ::fcntl(shared.descriptor, F_GET_SEALS);
  return seals >= 0 && (seals & NO_WRITING) == 0 && (::fcntl(shared.descriptor, F_GETFL) & O_ACCMODE) == O_RDWR &&
         shared.bytes <= std::size_t{INT_MAX} && shared.offset <= shared.bytes &&
         shared.bytes - shared.offset >= needed;
}

class SharedFrame final : public Buffer {
 public:
  SharedFrame(const Pixels& pixels, wl_buffer* handle) : shared_(*pixels.shared), pixels_(pixels) {
    pixels_.shared = &shared_;
    own(handle);
  }
  [[nodiscard]] Pixels pixels() const override { return pixels_; }

 private:
  SharedPixels shared_;
  Pixels pixels_;
};

}  // namespace

void Buffer::own(wl_buffer* handle) {
  handle_.reset(handle);
  static constexpr wl_buffer_listener LISTENER{[](void* data, wl_buffer*) {
    auto& self = *static_cast<Buffer*>(data);
    self.isBusy_ = false;
    if (const Task onRelease = self.onRelease_) onRelease();
  }};
  wl_buffer_add_listener(handle, &LISTENER, this);
}

std::unique_ptr<Buffer> SharedFrames::frame(const Pixels& pixels) {
  if (pixels.shared == nullptr) return nullptr;
  const SharedPixels& shared = *pixels.shared;
  const auto stride = static_cast<std::size_t>(pixels.stride) * PIXEL;
  if (!canBeGiven(shared, stride * static_cast<std::size_t>(pixels.height))) return nullptr;
  if (shared.memory != memory_) {
    memory_ = shared.memory;
    pool_.reset(wl_shm_create_pool(shm_, shared.descriptor, static_cast<int>(shared.bytes)));
  }
  return std::make_unique<SharedFrame>(
      pixels, wl_shm_pool_create_buffer(pool_.get(), static_cast<int>(shared.offset), pixels.width, pixels.height,
                                        static_cast<int>(stride), WL_SHM_FORMAT_ARGB8888));
}

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
  buffer->own(wl_shm_pool_create_buffer(pool, 0, width, height, width * PIXEL, WL_SHM_FORMAT_ARGB8888));
  wl_shm_pool_destroy(pool);
  ::close(file);
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
    pool_.reset(wl_shm_create_pool(shm, file, static_cast<int>(size)));
  }
  ::close(file);
}

wl_buffer* Shades::black(double alpha, bool isLarger) {
  if (!pool_) return nullptr;
  const auto shade = static_cast<std::size_t>(std::lround(std::clamp(alpha, 0.0, 1.0) * (STRENGTHS - 1)));
  auto& buffer = buffers_.at(isLarger ? 1 : 0).at(shade);
  if (!buffer) {
    const int side = isLarger ? LARGER_SIDE : LARGER_SIDE - 1;
    buffer.reset(wl_shm_pool_create_buffer(pool_.get(), static_cast<int>(shade * SQUARE) * PIXEL, side, side,
                                           side * PIXEL, WL_SHM_FORMAT_ARGB8888));
  }
  return buffer.get();
}

}  // namespace dormel::wayland
