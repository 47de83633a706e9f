#include "platform/linux/gnome/FrameMemory.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace dormel::gnome {
FrameMemory::FrameMemory(int width, int height) : width_(width), height_(height) {
  stale_.fill({0, 0, width, height});
  const std::size_t size = frameBytes() * stale_.size();
  memory_ = posix::FileDescriptor(::memfd_create("dormel-frames", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  if (!memory_.valid() || ::ftruncate(memory_.get(), static_cast<off_t>(size)) != 0) return;
  if (::fcntl(memory_.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0) return;
  void* const mapped = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, memory_.get(), 0);
  if (mapped != MAP_FAILED) pixels_ = static_cast<std::uint32_t*>(mapped);
}

FrameMemory::~FrameMemory() {
  if (pixels_ != nullptr) ::munmap(pixels_, frameBytes() * stale_.size());
}

std::size_t FrameMemory::frameBytes() const {
  return std::size_t(width_) * std::size_t(height_) * sizeof(std::uint32_t);
}

std::int64_t FrameMemory::write(const Pixels& pixels, const PixelRect& changed) {
  if (pixels_ == nullptr || !fits(pixels)) return -1;
  for (PixelRect& stale : stale_) stale = united(stale, changed);
  if (read_ == newest_) newest_ = 1 - newest_;
  const std::size_t start = frameBytes() * static_cast<std::size_t>(newest_);
  std::uint32_t* const target = pixels_ + start / sizeof(std::uint32_t);
  const PixelRect area = std::exchange(stale_[static_cast<std::size_t>(newest_)], {});
  const int left = std::clamp(area.x, 0, width_);
  const int right = std::clamp(area.x + area.width, left, width_);
  for (int y = std::max(0, area.y); y < std::min(height_, area.y + area.height); ++y) {
    const std::uint32_t* source = pixels.data + std::ptrdiff_t(y) * pixels.stride;
    std::copy(source + left, source + right, target + std::ptrdiff_t(y) * width_ + left);
  }
  return static_cast<std::int64_t>(start);
}

}  // namespace dormel::gnome
