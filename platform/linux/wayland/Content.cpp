#include "platform/linux/wayland/Content.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

/// Compositors hold two, and a third while they change over. With so many in use it is overwritten what stands longest.
constexpr std::size_t MOST_BUFFERS = 3;

std::uint32_t weakened(std::uint32_t pixel, std::uint32_t strength) {
  // Two channels at a time, each with a byte of room above it.
  const std::uint32_t even = (pixel & 0x00ff00ff) * strength;
  const std::uint32_t odd = (pixel >> 8 & 0x00ff00ff) * strength;
  return (even >> 8 & 0x00ff00ff) | (odd & 0xff00ff00);
}

/// A picture on black, for a black that is as weak as it is: what is black in it takes nothing from what shines through
/// from beneath, or its shape would stand out while a screen fades.
std::uint32_t onWeakBlack(std::uint32_t pixel) {
  const std::uint32_t most = std::max({pixel & 0xff, pixel >> 8 & 0xff, pixel >> 16 & 0xff});
  return (pixel & 0x00ffffff) | most << 24;
}

}  // namespace

void Content::update(const Pixels& pixels, const PixelRect& changed, const Size& points) {
  if (pixels.width <= 0 || pixels.height <= 0) return clear();
  PixelRect area = changed;
  if (pixels.width != width_ || pixels.height != height_) {
    clear();
    width_ = pixels.width;
    height_ = pixels.height;
    area = {0, 0, width_, height_};
  }
  points_ = points;
  for (const auto& buffer : buffers_) buffer->stale = united(buffer->stale, area);
  auto frame = sharedFrames_.frame(pixels);
  newest_ = frame.get();
  if (frame) {
    frame->setOnRelease([this] { tidy(); });
    frames_.push_back(std::move(frame));
  }
  if (alpha_ >= 1 && newest_ != nullptr) return showShared(area);
  if (alpha_ < 1) keepWhole(pixels);
  if (PixelBuffer* const buffer = freeBuffer()) {
    present(alpha_ < 1 ? Pixels{whole_.data(), width_, height_, width_} : pixels, *buffer);
  }
  tidy();
}

void Content::keepWhole(const Pixels& pixels) {
  whole_.resize(std::size_t(width_) * std::size_t(height_));
  const std::size_t bytes = whole_.size() * sizeof whole_.front();
  if (pixels.shared != nullptr && pixels.stride == width_) {
    // A page of a painter's that is looked at where it lies is one of this process's from then on, too.
    const auto at = static_cast<off_t>(pixels.shared->offset);
    if (::pread(pixels.shared->descriptor, whole_.data(), bytes, at) == static_cast<ssize_t>(bytes)) return;
  }
  for (int y = 0; y < height_; ++y) {
    std::copy_n(pixels.data + y * pixels.stride, width_, whole_.begin() + std::ptrdiff_t(y) * width_);
  }
}

void Content::showShared(const PixelRect& damage) {
  latest_ = newest_;
  show(damage);
  tidy();
}

void Content::tidy() {
  const auto isOver = [this](const auto& buffer) {
    return buffer.get() != latest_ && buffer.get() != newest_ && !buffer->isBusy();
  };
  std::erase_if(frames_, isOver);
  if (latest_ == newest_) std::erase_if(buffers_, isOver);
}

void Content::present(const Pixels& pixels, PixelBuffer& buffer) {
  const PixelRect damage = std::exchange(buffer.stale, {});
  copy(pixels, buffer, damage);
  latest_ = &buffer;
  show(damage);
}

void Content::setAlpha(double alpha) {
  if (alpha == alpha_) return;
  if (latest_ != nullptr && alpha_ >= 1 && whole_.empty()) {
    keepWhole(latest_->pixels());
  }
  alpha_ = alpha;
  if (alpha_ >= 1 && newest_ != nullptr) {
    showShared({0, 0, width_, height_});
  } else if (latest_ != nullptr) {
    for (const auto& buffer : buffers_) buffer->stale = {0, 0, width_, height_};
    if (PixelBuffer* const buffer = freeBuffer()) {
      present({whole_.data(), width_, height_, width_}, *buffer);
    }
  }
  if (alpha_ >= 1) {
    whole_.clear();
    whole_.shrink_to_fit();
  }
}

PixelBuffer* Content::freeBuffer() {
  const auto found =
      std::find_if(buffers_.begin(), buffers_.end(), [](const auto& buffer) { return !buffer->isBusy(); });
  if (found != buffers_.end()) {
    std::rotate(found, found + 1, buffers_.end());  // the last one is the newest
    return buffers_.back().get();
  }
  if (buffers_.size() < MOST_BUFFERS) {
    auto made = PixelBuffer::create(connection_.globals().shm.get(), width_, height_);
    if (!made) return nullptr;
    made->setOnRelease([this] { tidy(); });
    buffers_.push_back(std::move(made));
  } else {
    std::rotate(buffers_.begin(), buffers_.begin() + 1, buffers_.end());
  }
  return buffers_.back().get();
}

void Content::copy(const Pixels& from, PixelBuffer& to, const PixelRect& area) const {
  const auto strength = static_cast<std::uint32_t>(std::lround(std::clamp(alpha_, 0.0, 1.0) * 256));
  const int left = std::clamp(area.x, 0, width_);
  const int right = std::clamp(area.x + area.width, left, width_);
  for (int y = std::max(0, area.y); y < std::min(height_, area.y + area.height); ++y) {
    const std::uint32_t* source = from.data + y * from.stride;
    std::uint32_t* target = to.row(y);
    if (strength >= 256) {
      std::copy(source + left, source + right, target + left);
    } else {
      std::transform(source + left, source + right, target + left, [&](std::uint32_t pixel) {
        const std::uint32_t weak = weakened(pixel, strength);
        return isOnBlack_ ? onWeakBlack(weak) : weak;
      });
    }
  }
}

void Content::show(const PixelRect& damage) {
  if (!surface_ || latest_ == nullptr) return;
  latest_->setBusy();
  wl_surface_attach(surface_.get(), latest_->handle(), 0, 0);
  wl_surface_damage_buffer(surface_.get(), damage.x, damage.y, damage.width, damage.height);
  wp_viewport_set_destination(viewport_.get(), static_cast<int>(std::ceil(points_.width)),
                              static_cast<int>(std::ceil(points_.height)));
  wl_surface_commit(surface_.get());
}

void Content::standOn(wl_surface* parent) {
  viewport_.reset();
  place_.reset();
  surface_.reset();
  if (parent == nullptr) return;
  const Globals& globals = connection_.globals();
  surface_.reset(wl_compositor_create_surface(globals.compositor.get()));
  viewport_.reset(wp_viewporter_get_viewport(globals.viewporter.get(), surface_.get()));
  place_.reset(wl_subcompositor_get_subsurface(globals.subcompositor.get(), surface_.get(), parent));
  wl_subsurface_set_desync(place_.get());
  const Owned<wl_region> nothing(wl_compositor_create_region(globals.compositor.get()));
  wl_surface_set_input_region(surface_.get(), nothing.get());
  show({0, 0, width_, height_});
}

std::pair<int, int> Content::at(const Size& parent, bool centred) const {
  if (!centred) return {0, 0};
  return {static_cast<int>(std::floor((parent.width - points_.width) / 2)),
          static_cast<int>(std::floor((parent.height - points_.height) / 2))};
}

void Content::layOut(const Size& parent, bool centred) {
  at_ = at(parent, centred);
  if (place_) wl_subsurface_set_position(place_.get(), at_.first, at_.second);
}

void Content::clear() {
  latest_ = newest_ = nullptr;
  buffers_.clear();
  frames_.clear();
  whole_.clear();
  width_ = height_ = 0;
  if (surface_) {
    wl_surface_attach(surface_.get(), nullptr, 0, 0);
    wl_surface_commit(surface_.get());
  }
}

}  // namespace dormel::wayland
