#include "platform/linux/x11/ServerPixmap.h"

#include <fcntl.h>
#include <unistd.h>
#include <xcb/shm.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/common/PixelRect.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

constexpr std::size_t REQUEST_HEADER = 64;                  // generous
constexpr std::size_t BAND_BYTES = std::size_t{64} * 1024;  // the server serves others in between
constexpr std::size_t SMALL_PART = std::size_t{64} * 1024;  // cheaper to send than to wait for its having been read

std::size_t bytesOf(int width, int height) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * sizeof(std::uint32_t);
}

}  // namespace

ServerPixmap::ServerPixmap(std::shared_ptr<Connection> connection, const ServerFeatures& features,
                           const Visuals& visuals, std::uint8_t depth)
    : connection_(std::move(connection)),
      visuals_(visuals),
      depth_(visuals.canDraw() ? std::uint8_t{32} : depth),
      canShare_(features.sharedMemory),
      completionEvent_(static_cast<std::uint8_t>(features.sharedMemoryEvent + XCB_SHM_COMPLETION)) {
  if (canShare_) subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

ServerPixmap::~ServerPixmap() {
  detach();
  release();
}

void ServerPixmap::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != completionEvent_) return;
  if (reinterpret_cast<const xcb_shm_completion_event_t&>(event).shmseg == segment_) reading_.reset();
}

bool ServerPixmap::isShared(const Pixels& pixels, const PixelRect& part) {
  if (!canShare_ || pixels.shared == nullptr || reading_ || bytesOf(part.width, part.height) <= SMALL_PART)
    return false;
  const SharedPixels& shared = *pixels.shared;
  const std::size_t needed = bytesOf(static_cast<int>(pixels.stride), pixels.height);
  if (shared.offset > shared.bytes || shared.bytes - shared.offset < needed) return false;
  return shared.memory == memory_ || attach(shared);
}

bool ServerPixmap::attach(const SharedPixels& shared) {
  detach();
  const int given = ::fcntl(shared.descriptor, F_DUPFD_CLOEXEC, 3);
  if (given < 0) return false;
  const std::uint32_t segment = connection_->newId();
  const auto cookie = xcb_shm_attach_fd_checked(*connection_, segment, given, 1);  // which closes it
  // A relay between this and the server may lose descriptors: then that is how it stays.
  canShare_ = owned(xcb_request_check(*connection_, cookie)) == nullptr;
  if (!canShare_) return false;
  segment_ = segment;
  memory_ = shared.memory;
  return true;
}

void ServerPixmap::detach() {
  if (segment_ != XCB_NONE) xcb_shm_detach(*connection_, std::exchange(segment_, XCB_NONE));
  memory_.reset();
  reading_.reset();
}

void ServerPixmap::allocate(int width, int height) {
  release();
  width_ = width;
  height_ = height;
  Connection& c = *connection_;
  pixmap_ = c.newId();
  xcb_create_pixmap(c, depth_, pixmap_, c.root(), static_cast<std::uint16_t>(width),
                    static_cast<std::uint16_t>(height));
  gc_ = c.newId();
  const std::uint32_t noExposures = 0;
  xcb_create_gc(c, gc_, pixmap_, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
  if (!visuals_.canDraw()) return;
  picture_ = c.newId();
  xcb_render_create_picture(c, picture_, pixmap_, visuals_.argbFormat, 0, nullptr);
}

void ServerPixmap::release() {
  if (pixmap_ == XCB_NONE) return;
  if (picture_ != XCB_NONE) xcb_render_free_picture(*connection_, std::exchange(picture_, XCB_NONE));
  xcb_free_gc(*connection_, std::exchange(gc_, XCB_NONE));
  xcb_free_pixmap(*connection_, std::exchange(pixmap_, XCB_NONE));
}

const std::uint32_t* ServerPixmap::rowsOf(const Pixels& pixels, const PixelRect& part) {
  const std::ptrdiff_t from = part.y * pixels.stride + part.x;
  const auto length = static_cast<std::size_t>((part.height - 1) * pixels.stride + part.width);
  const std::uint32_t* rows = pixels.data + from;
  band_.resize(length);
  if (pixels.shared != nullptr) {
    // A page of the painter's that is looked at where it lies is one of this process's from then on, too.
    const auto at = static_cast<off_t>(pixels.shared->offset + static_cast<std::size_t>(from) * sizeof(std::uint32_t));
    const ssize_t got = ::pread(pixels.shared->descriptor, band_.data(), length * sizeof(std::uint32_t), at);
    if (got == static_cast<ssize_t>(length * sizeof(std::uint32_t))) rows = band_.data();
  }
  if (pixels.stride == part.width) return rows;
  for (std::ptrdiff_t y = 0; y < part.height; ++y) {
    std::memmove(band_.data() + y * part.width, rows + y * pixels.stride, bytesOf(part.width, 1));
  }
  return band_.data();
}

void ServerPixmap::update(const Pixels& pixels, const PixelRect& changed) {
  if (pixels.width <= 0 || pixels.height <= 0) return;
  PixelRect part = changed;
  if (isEmpty() || pixels.width != width_ || pixels.height != height_) {
    allocate(pixels.width, pixels.height);
    part = {0, 0, width_, height_};
  }
  part = intersection(part, {0, 0, width_, height_});
  if (part.empty()) return;
  if (isShared(pixels, part)) {
    xcb_shm_put_image(*connection_, pixmap_, gc_, static_cast<std::uint16_t>(pixels.stride),
                      static_cast<std::uint16_t>(pixels.height), static_cast<std::uint16_t>(part.x),
                      static_cast<std::uint16_t>(part.y), static_cast<std::uint16_t>(part.width),
                      static_cast<std::uint16_t>(part.height), static_cast<std::int16_t>(part.x),
                      static_cast<std::int16_t>(part.y), depth_, XCB_IMAGE_FORMAT_Z_PIXMAP, 1, segment_,
                      static_cast<std::uint32_t>(pixels.shared->offset));
    reading_ = pixels.shared->hold;
    return;
  }
  const std::size_t rowBytes = bytesOf(part.width, 1);
  const std::size_t apart = bytesOf(static_cast<int>(pixels.stride), 1);
  const std::size_t longest = std::size_t{xcb_get_maximum_request_length(*connection_)} * 4 - REQUEST_HEADER;
  const int rows = static_cast<int>(std::max<std::size_t>(1, std::min(longest, BAND_BYTES) / apart));
  for (int y = part.y; y < part.y + part.height; y += rows) {
    const int count = std::min(rows, part.y + part.height - y);
    const std::uint32_t* data = rowsOf(pixels, {part.x, y, part.width, count});
    xcb_put_image(*connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_, gc_, static_cast<std::uint16_t>(part.width),
                  static_cast<std::uint16_t>(count), static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(y), 0,
                  depth_, static_cast<std::uint32_t>(rowBytes * static_cast<std::size_t>(count)),
                  reinterpret_cast<const std::uint8_t*>(data));
  }
}

}  // namespace dormel::x11
