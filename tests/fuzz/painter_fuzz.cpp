// What a painter answers: any messages in any order, with any memory, while a screen is locked.
#include <memory>

#include "overlay/BlockerOverlayView.h"
#include "platform/common/paint/Messages.h"
#include "platform/common/paint/PaintedCanvases.h"
#include "platform/sim/SimMachine.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/sim/FakeSession.h"

namespace {

using namespace dormel;

class Bytes final : public paint::PictureMemory {
 public:
  explicit Bytes(std::size_t size) : bytes_(size) {}
  [[nodiscard]] const std::byte* data() const override { return bytes_.data(); }
  [[nodiscard]] std::size_t size() const override { return bytes_.size(); }

 private:
  std::vector<std::byte> bytes_;
};

/// Its processes say what the input holds.
class Input final : public paint::PainterLauncher {
 public:
  [[nodiscard]] std::unique_ptr<paint::PainterProcess> start(paint::PainterHandlers handlers) override {
    struct Process final : paint::PainterProcess {
      void send(std::string_view order) override {
        fuzz::require(paint::decodedOrder(order).has_value(), "what is sent can be read");
      }
    };
    handlers_ = std::move(handlers);
    return std::make_unique<Process>();
  }
  void say(std::string_view answer, const std::shared_ptr<const paint::PictureMemory>& memory) const {
    if (handlers_.onAnswer) handlers_.onAnswer(answer, memory);
  }

 private:
  paint::PainterHandlers handlers_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SimMachine machine;
  machine.journal.setEnabled(false);
  const auto session = std::make_shared<FakeSession>();
  Input input;
  paint::PaintedCanvases canvases(input);
  const auto canvas = canvases.make(BlockerOverlayView::create(session));
  constexpr int SIDE = 16;
  canvas->resize({SIDE, SIDE}, 1);
  std::uint64_t seen = 0;
  canvas->setOnFrame([&](const Pixels& pixels, const PixelRect& changed) {
    fuzz::require(pixels.width == SIDE && pixels.height == SIDE, "a picture has the size that was asked for");
    fuzz::require(!changed.empty() && contains({0, 0, SIDE, SIDE}, changed), "what changed lies in it");
    for (int i = 0; i < SIDE * SIDE; ++i) seen += pixels.data[i];  // and all of it can be read
  });
  canvas->setShowing(true);
  // Each message: its length, how much memory comes with it, its bytes.
  std::string_view rest = fuzz::text(data, size);
  while (rest.size() >= 2) {
    const std::size_t length = std::min<std::size_t>(static_cast<std::uint8_t>(rest[0]), rest.size() - 2);
    const auto pages = static_cast<std::uint8_t>(rest[1]);
    const auto memory = pages == 0 ? nullptr : std::make_shared<Bytes>(std::size_t{pages} * 512);
    input.say(rest.substr(2, length), memory);
    rest.remove_prefix(2 + length);
    machine.advance(0.3);
  }
  canvas->pointer(PointerAction::press, 1, 1);
  static_cast<void>(paint::decodedOrder(fuzz::text(data, size)));
  static_cast<void>(decodedBlockerOverlay(fuzz::text(data, size)));
  return static_cast<int>(seen & 0);
}
