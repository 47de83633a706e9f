// A panel's picture in memory that the extension reads: two frames of one size. The one that is being read is left
// alone, the other one takes what is drawn meanwhile. Main thread only.
#pragma once

#include <array>
#include <cstdint>

#include "platform/common/Canvas.h"
#include "platform/linux/posix/FileDescriptor.h"

namespace dormel::gnome {

class FrameMemory {
 public:
  /// For pictures of that many pixels. The file is sealed against shrinking: no reader of it can fall into a hole.
  FrameMemory(int width, int height);
  FrameMemory(const FrameMemory&) = delete;
  FrameMemory& operator=(const FrameMemory&) = delete;
  ~FrameMemory();

  [[nodiscard]] bool fits(const Pixels& pixels) const { return pixels.width == width_ && pixels.height == height_; }
  [[nodiscard]] int descriptor() const { return memory_.get(); }

  /// Takes over what changed, and answers at which byte the frame lies; -1 where there was no memory for it.
  [[nodiscard]] std::int64_t write(const Pixels& pixels, const PixelRect& changed);
  /// The frame that was written last is being read from now on, until `wasRead`.
  void isRead() { read_ = newest_; }
  void wasRead() { read_ = NONE; }

 private:
  static constexpr int NONE = -1;
  [[nodiscard]] std::size_t frameBytes() const;

  const int width_;
  const int height_;
  posix::FileDescriptor memory_;
  std::uint32_t* pixels_ = nullptr;
  std::array<PixelRect, 2> stale_;  ///< what each frame lacks
  int newest_ = 0;
  int read_ = NONE;
};

}  // namespace dormel::gnome
