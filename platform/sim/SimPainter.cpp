#include "platform/sim/SimPainter.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace dormel {
namespace {

constexpr Seconds START = 0.15;
constexpr Seconds ANSWER = 0.01;

class SimMemory final : public paint::PictureMemory {
 public:
  explicit SimMemory(std::size_t pixels) : pixels_(pixels) {}
  void fill(std::uint32_t color) { std::fill(pixels_.begin(), pixels_.end(), color); }
  [[nodiscard]] const std::byte* data() const override { return reinterpret_cast<const std::byte*>(pixels_.data()); }
  [[nodiscard]] std::size_t size() const override { return pixels_.size() * sizeof(std::uint32_t); }

 private:
  std::vector<std::uint32_t> pixels_;
};

}  // namespace

std::uint32_t SimPainter::colorOf(std::string_view state) {
  std::uint32_t hash = 2166136261;
  for (const char byte : state) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619;
  return hash | 0xFF808080;  // no ground of plain lines
}

struct SimPainter::Process : std::enable_shared_from_this<Process> {
  Process(SimPainter& thePainter, paint::PainterHandlers theHandlers, Mood theMood)
      : painter(thePainter), handlers(std::move(theHandlers)), mood(theMood) {}

  /// Has `work` done by this process, later; not if it is gone or stands still by then.
  void later(Seconds delay, std::function<void(Process&)> work) {
    painter.timeline_.addMain(delay, 0, [weak = weak_from_this(), work = std::move(work)] {
      const auto self = weak.lock();
      if (self && self->mood != Mood::hangs) work(*self);
    });
  }

  void say(const paint::Answer& answer, const std::shared_ptr<const paint::PictureMemory>& memory = nullptr) const {
    const auto keep = shared_from_this();
    handlers.onAnswer(paint::encoded(answer), memory);
  }

  void end() {
    later(0, [](Process& self) {
      const auto keep = self.shared_from_this();
      self.handlers.onEnd();
    });
  }

  void answer(const paint::Order& order) {
    if (!std::exchange(hasSaidHello, true)) say(paint::Hello{paint::VERSION});
    if (const auto* ping = std::get_if<paint::Ping>(&order)) say(paint::Pong{ping->serial});
    if (const auto* pointer = std::get_if<paint::Pointer>(&order)) painter.pointers_.push_back(*pointer);
    const auto* scene = std::get_if<paint::Scene>(&order);
    if (scene == nullptr) return;
    last = *scene;
    const auto width = static_cast<std::uint32_t>(paint::pixelLength(scene->size.width, scene->scale));
    const auto height = static_cast<std::uint32_t>(paint::pixelLength(scene->size.height, scene->scale));
    auto& [revision, memory] = canvases[scene->canvas];
    if (scene->showing && std::exchange(revision, scene->revision) != scene->revision) {
      memory = std::make_shared<SimMemory>(std::size_t{width} * height);
      say(paint::Memory{scene->canvas, revision, width, height, 1}, memory);
      say(paint::Areas{scene->canvas, {{10, 20, 30, 40}}});
    }
    if (scene->showing) {
      memory->fill(colorOf(scene->state));
      say(paint::Frame{scene->canvas, revision, 0, {0, 0, static_cast<int>(width), static_cast<int>(height)}});
    }
    say(paint::Done{scene->canvas, scene->serial});
  }

  void lie(Lie lie) const {
    const auto width = static_cast<std::uint32_t>(paint::pixelLength(last.size.width, last.scale));
    const auto height = static_cast<std::uint32_t>(paint::pixelLength(last.size.height, last.scale));
    const auto enough = std::make_shared<SimMemory>(std::size_t{width} * height);
    const paint::Memory memory{last.canvas, last.revision, width, height, 1};
    const paint::Frame frame{last.canvas, last.revision, 0, {0, 0, 1, 1}};
    paint::Memory otherMemory = memory;
    paint::Frame otherFrame = frame;
    switch (lie) {
      case Lie::wrongVersion:
        return say(paint::Hello{paint::VERSION + 1});
      case Lie::helloTwice:
        say(paint::Hello{paint::VERSION});
        return say(paint::Hello{paint::VERSION});
      case Lie::memoryUnsealed:
        return say(memory);
      case Lie::memoryTooSmall:
        return say(memory, std::make_shared<SimMemory>(std::size_t{width} * height - 1));
      case Lie::memoryOfAnotherSize:
        otherMemory.width += 1;
        return say(otherMemory, std::make_shared<SimMemory>(std::size_t{width + 1} * height));
      case Lie::manyFrames:
        otherMemory.frames = std::numeric_limits<std::uint32_t>::max();
        return say(otherMemory, enough);
      case Lie::frameBeyondMemory:
        otherFrame.frame = 1;
        return say(otherFrame);
      case Lie::changeOutsidePicture:
        otherFrame.changed = {static_cast<int>(width), 0, 1, 1};
        return say(otherFrame);
      case Lie::changeOverflows:
        otherFrame.changed = {std::numeric_limits<int>::max(), 0, 2, 1};
        return say(otherFrame);
      case Lie::doneUnasked:
        return say(paint::Done{last.canvas, last.serial + 77});
      case Lie::strangersCanvas:
        return say(paint::Done{last.canvas + 1000, last.serial});
      case Lie::nothingAtAll:
        handlers.onAnswer({}, nullptr);
        return;
    }
  }

  SimPainter& painter;
  paint::PainterHandlers handlers;
  Mood mood;
  bool hasSaidHello = false;
  paint::Scene last;
  struct Canvas {
    std::uint32_t revision = 0;
    std::shared_ptr<SimMemory> memory;
  };
  std::map<std::uint32_t, Canvas> canvases;
};

class SimPainter::Handle final : public paint::PainterProcess {
 public:
  explicit Handle(std::shared_ptr<Process> process) : process_(std::move(process)) {}

  void send(std::string_view bytes) override {
    auto order = paint::decodedOrder(bytes);
    if (!order) return process_->end();
    if (process_->mood == Mood::babbles) {
      process_->later(ANSWER, [](Process& self) {
        const auto keep = self.shared_from_this();
        self.handlers.onAnswer("lorem ipsum", nullptr);
      });
    } else if (process_->mood == Mood::paints) {
      // In the order they came: no answer overtakes an earlier one.
      const Seconds now = process_->painter.timeline_.uptime();
      const Seconds ready = process_->painter.starts_.back() + START;
      process_->later(std::max(ANSWER, ready - now),
                      [order = std::move(*order)](Process& self) { self.answer(order); });
    }
  }

 private:
  std::shared_ptr<Process> process_;
};

std::unique_ptr<paint::PainterProcess> SimPainter::start(paint::PainterHandlers handlers) {
  starts_.push_back(timeline_.uptime());
  if (mood_ == Mood::absent) return nullptr;
  auto process = std::make_shared<Process>(*this, std::move(handlers), mood_);
  running_ = process;
  if (mood_ == Mood::dies) process->end();
  return std::make_unique<Handle>(std::move(process));
}

bool SimPainter::isRunning() const { return !running_.expired(); }

void SimPainter::die() {
  const auto process = running_.lock();
  if (!process) return;
  process->mood = Mood::dies;
  process->end();
}

void SimPainter::hang() {
  if (const auto process = running_.lock()) process->mood = Mood::hangs;
}

void SimPainter::lie(Lie lie) {
  if (const auto process = running_.lock()) process->later(0, [lie](Process& self) { self.lie(lie); });
}

void SimPainter::act(std::uint32_t action) {
  const auto process = running_.lock();
  if (!process) return;
  process->later(0, [action](Process& self) {
    for (const auto& [number, canvas] : self.canvases) self.say(paint::Act{number, action});
  });
}

}  // namespace dormel
