#include "platform/common/paint/PaintedCanvases.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "platform/PaintedView.h"
#include "platform/Platform.h"
#include "platform/Process.h"
#include "platform/common/paint/PlainLines.h"

namespace dormel::paint {
namespace {

constexpr Seconds PICTURE_LIMIT = 2;
constexpr Seconds ROUNDING = 1e-4;  // what a timer may come early by
constexpr Seconds PLAIN_INTERVAL = 0.25;
constexpr std::uint32_t MOST_FRAMES = 4;

Seconds uptime() { return platform().clock.uptime(); }

class EmptyCanvas final : public Canvas {
 public:
  [[nodiscard]] Size fittingSize() const override { return {}; }
  void resize(const Size& /*size*/, double /*scale*/) override {}
  void setOnFrame(std::function<void(const Pixels&, const PixelRect&)> /*onFrame*/) override {}
  void setShowing(bool /*showing*/) override {}
  bool pointer(PointerAction /*action*/, double /*x*/, double /*y*/) override { return false; }
};

class PaintedCanvas final : public Canvas, private Painter::Client {
 public:
  PaintedCanvas(std::shared_ptr<Painter> painter, std::shared_ptr<PaintedView> view)
      : painter_(std::move(painter)), view_(std::move(view)), number_(painter_->join(*this)) {}
  PaintedCanvas(const PaintedCanvas&) = delete;
  PaintedCanvas& operator=(const PaintedCanvas&) = delete;
  ~PaintedCanvas() override { painter_->leave(number_); }

  [[nodiscard]] Size fittingSize() const override { return view_->fittingSize(); }

  void resize(const Size& size, double scale) override {
    const int width = pixelLength(size.width, scale);
    const int height = pixelLength(size.height, scale);
    scene_.size = size;
    scene_.scale = scale;
    if (width != width_ || height != height_) {
      width_ = width;
      height_ = height;
      hasPicture_ = false;
      beginAnew();
    }
    update();
  }

  void setOnFrame(std::function<void(const Pixels&, const PixelRect&)> onFrame) override {
    onFrame_ = std::move(onFrame);
    beginAnew();
    update();
  }

  void setShowing(bool showing) override {
    if (scene_.showing == showing) return;
    scene_.showing = showing;
    if (showing && !observation_) {
      observation_ = view_->observeState([this] { update(); });
      view_->onAppear();
    }
    update();
  }

  bool pointer(PointerAction action, double x, double y) override {
    painter_->send(Pointer{number_, action, x, y});
    return action == PointerAction::press && std::any_of(areas_.begin(), areas_.end(), [&](const Rect& area) {
             return x >= area.x && x < area.right() && y >= area.y && y < area.top();
           });
  }

 private:
  /// What still comes of frames made before is dropped.
  void beginAnew() {
    ++scene_.revision;
    memory_.reset();
    plainPixels_.clear();
  }

  /// What is to be shown may have changed.
  void update() {
    if (width_ == 0 || !onFrame_) return;
    scene_.canvas = number_;
    scene_.kind = view_->kind();
    scene_.state = view_->encodedState();
    scene_.serial = 0;
    wanted_ = encoded(scene_);
    if (scene_.showing) painter_->need();
    painter_->reconsiderMoving();
    sendIfChanged();
    reconsiderPlain();
    if (isPlain_ && scene_.showing) showPlain();
  }

  void sendIfChanged() {
    if (sentAt_ || !painter_->isRunning() || wanted_ == sent_ || (sent_.empty() && !scene_.showing)) return;
    sent_ = wanted_;
    sentAt_ = uptime();
    sentRevision_ = scene_.revision;
    sentWidth_ = width_;
    sentHeight_ = height_;
    Scene scene = scene_;
    scene.serial = serial_ = painter_->newSerial(number_);
    painter_->send(scene);
  }

  void started() override { sendIfChanged(); }

  void gone() override {
    process_ = std::make_shared<char>();
    sent_.clear();
    sentAt_.reset();
    memory_.reset();
    areas_.clear();
    if (!hasPicture_ && scene_.showing && painter_->hasFailedOften()) showPlain();
    reconsiderPlain();
  }

  [[nodiscard]] bool isMoving() const override { return scene_.showing && view_->isMoving(); }

  // What the painter says.

  [[nodiscard]] bool hear(const Answer& answer, const std::shared_ptr<const PictureMemory>& memory) override {
    if (const auto* m = std::get_if<Memory>(&answer)) return takeMemory(*m, memory);
    if (const auto* frame = std::get_if<Frame>(&answer)) return takeFrame(*frame);
    if (const auto* done = std::get_if<Done>(&answer)) return takeDone(*done);
    if (const auto* areas = std::get_if<Areas>(&answer)) areas_ = areas->areas;
    if (const auto* act = std::get_if<Act>(&answer); act != nullptr && scene_.showing) {
      // Not inside the painter's message: what it leads to may take this canvas away.
      platform().runLoop.async([weak = std::weak_ptr(view_), action = act->action] {
        if (const auto view = weak.lock()) view->act(action);
      });
    }
    return true;
  }

  [[nodiscard]] bool takeMemory(const Memory& m, const std::shared_ptr<const PictureMemory>& memory) {
    // Multiplied only once both are known to be small.
    if (!memory || sent_.empty() || m.frames == 0 || m.frames > MOST_FRAMES) return false;
    if (m.revision != sentRevision_ || static_cast<int>(m.width) != sentWidth_ ||
        static_cast<int>(m.height) != sentHeight_)
      return false;
    if (memory->size() < std::size_t{m.width} * m.height * sizeof(std::uint32_t) * m.frames) return false;
    layout_ = m;
    memory_ = m.revision == scene_.revision ? memory : nullptr;
    isWhole_ = true;
    return true;
  }

  [[nodiscard]] bool takeFrame(const Frame& frame) {
    if (frame.revision != layout_.revision || frame.frame >= layout_.frames) return false;
    const PixelRect& c = frame.changed;
    const auto width = static_cast<int>(layout_.width);
    const auto height = static_cast<int>(layout_.height);
    const bool isInside = c.x >= 0 && c.y >= 0 && c.width > 0 && c.height > 0 && c.width <= width &&
                          c.height <= height && c.x <= width - c.width && c.y <= height - c.height;
    if (!isInside) return false;
    if (memory_ && onFrame_ && scene_.showing) {
      const std::size_t offset = std::size_t{frame.frame} * layout_.width * layout_.height * sizeof(std::uint32_t);
      const auto* pixels = reinterpret_cast<const std::uint32_t*>(memory_->data() + offset);
      hasPicture_ = true;
      isPlain_ = false;
      plainTimer_.invalidate();
      plainPixels_ = {};
      painter_->pictureShown();
      const bool isWhole = std::exchange(isWhole_, false);
      const SharedPixels shared{memory_, memory_->descriptor(), memory_->size(), offset, hold(frame)};
      const bool isShared = shared.descriptor >= 0;
      onFrame_({pixels, width, height, width, isShared ? &shared : nullptr},
               isWhole ? PixelRect{0, 0, width, height} : c);
    } else {
      isWhole_ = true;
      static_cast<void>(hold(frame));
    }
    return true;
  }

  /// The frame goes back to the painter when the last copy goes.
  [[nodiscard]] std::shared_ptr<const void> hold(const Frame& frame) {
    return {this, [painter = std::weak_ptr(painter_), process = std::weak_ptr(process_),
                   release = Release{number_, frame.revision, frame.frame}](const void*) {
              const auto present = painter.lock();
              if (present && !process.expired()) present->send(release);
            }};
  }

  [[nodiscard]] bool takeDone(const Done& done) {
    if (!sentAt_ || done.serial != serial_) return false;
    shown_ = sent_;
    if (staleSince_) staleSince_ = *sentAt_;  // what was changed before is on screen
    sentAt_.reset();
    sendIfChanged();
    reconsiderPlain();
    return true;
  }

  // The plain lines.

  [[nodiscard]] bool isTrue() const {
    return hasPicture_ && shown_ == wanted_ && !(view_->isMoving() && !painter_->isRunning());
  }

  void reconsiderPlain() {
    if (!scene_.showing) isPlain_ = false;
    if (!scene_.showing || (isTrue() && !isPlain_)) {
      staleSince_.reset();
      plainTimer_.invalidate();
      return;
    }
    if (isPlain_) return;
    const bool isNew = !staleSince_;
    if (isNew) staleSince_ = uptime();
    if (!isNew && plainTimer_) return;
    const Seconds left = *staleSince_ + PICTURE_LIMIT - uptime();
    plainTimer_ = Timer::once(std::max(0.0, left), [this] {
      plainTimer_.invalidate();
      if (!staleSince_ || isPlain_) return;
      if (uptime() + ROUNDING >= *staleSince_ + PICTURE_LIMIT) {
        showPlain();
      } else {
        reconsiderPlain();
      }
    });
  }

  void showPlain() {
    isPlain_ = true;
    staleSince_.reset();
    plainTimer_.invalidate();
    // The seconds of a hold are read from the clock.
    if (isMoving()) {
      plainTimer_ = Timer::once(PLAIN_INTERVAL, [this] {
        if (isPlain_) showPlain();
      });
    }
    std::vector<std::string> lines = view_->plainLines(canWritePlainly);
    if (lines == plainLines_ && !plainPixels_.empty() && plainWidth_ == width_) return;
    plainLines_ = std::move(lines);
    plainWidth_ = width_;
    plainPixels_ = drawPlainLines(plainLines_, width_, height_, scene_.scale);
    onFrame_({plainPixels_.data(), width_, height_, width_}, {0, 0, width_, height_});
    isWhole_ = true;
  }

  std::shared_ptr<Painter> painter_;
  std::shared_ptr<char> process_ = std::make_shared<char>();  ///< another one for each process
  std::shared_ptr<PaintedView> view_;
  std::shared_ptr<const void> observation_;
  std::function<void(const Pixels&, const PixelRect&)> onFrame_;
  const std::uint32_t number_;

  Scene scene_;
  int width_ = 0;  ///< pixels
  int height_ = 0;
  std::string wanted_;             ///< the scene as it should be on screen, without its serial
  std::string sent_;               ///< as it was last sent to this process; empty when it knows none
  std::string shown_;              ///< as it was last said to be in the picture
  std::optional<Seconds> sentAt_;  ///< while the answer is not there
  std::uint32_t serial_ = 0;
  std::uint32_t sentRevision_ = 0;
  int sentWidth_ = 0;
  int sentHeight_ = 0;

  Memory layout_;
  std::shared_ptr<const PictureMemory> memory_;  ///< null when what it holds is not of the present revision
  std::vector<Rect> areas_;
  bool hasPicture_ = false;  ///< of the present size, whether painted or not
  bool isWhole_ = true;      ///< the next frame counts as changed everywhere

  std::optional<Seconds> staleSince_;  ///< since when the picture has not been true
  bool isPlain_ = false;
  std::vector<std::string> plainLines_;
  std::vector<std::uint32_t> plainPixels_;
  int plainWidth_ = 0;
  Timer plainTimer_;
};

}  // namespace

std::unique_ptr<Canvas> PaintedCanvases::make(std::shared_ptr<View> view) {
  auto painted = std::dynamic_pointer_cast<PaintedView>(std::move(view));
  if (painted) return std::make_unique<PaintedCanvas>(painter_, std::move(painted));
  platform().output.printError("A view that no painter draws stays empty.");
  return std::make_unique<EmptyCanvas>();
}

}  // namespace dormel::paint
