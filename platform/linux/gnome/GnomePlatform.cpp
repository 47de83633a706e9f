#include "platform/linux/gnome/GnomePlatform.h"

#include <utility>

#include "platform/linux/display/DisplayLink.h"
#include "platform/linux/display/HeldKeyTaps.h"
#include "platform/linux/freedesktop/BusMessage.h"
#include "platform/linux/gnome/Panel.h"

namespace dormel::gnome {
namespace {

constexpr std::uint64_t IDLE_MICROSECONDS = 200'000;  // for an answer about idle time, which is asked for now and then

/// The extension is there, of our protocol, and answers.
class Trust final : public Accessibility {
 public:
  explicit Trust(std::shared_ptr<Stage> stage) : stage_(std::move(stage)) {}
  [[nodiscard]] bool isProcessTrusted() const override {
    stage_->connect();
    return stage_->isConnected();
  }

 private:
  std::shared_ptr<Stage> stage_;
};

/// What the shell's compositor says of all input devices together.
class MutterIdle final : public InputIdle {
 public:
  [[nodiscard]] Seconds secondsSinceLast(InputKind /*kind*/) const override {
    if (!bus_) bus_ = freedesktop::openSessionBus();
    std::uint64_t milliseconds = 0;
    const auto answer = freedesktop::busAnswer(
        bus_.get(), freedesktop::busCall(bus_.get(), MONITOR, "org.gnome.Mutter.IdleMonitor", "GetIdletime", ""),
        IDLE_MICROSECONDS);
    const bool isKnown = answer && sd_bus_message_read_basic(answer.get(), 't', &milliseconds) >= 0;
    if (!isKnown) bus_.reset();
    return isKnown ? static_cast<double>(milliseconds) / 1000 : -1;
  }

 private:
  static constexpr freedesktop::BusObject MONITOR{"org.gnome.Mutter.IdleMonitor", "/org/gnome/Mutter/IdleMonitor/Core"};

  mutable freedesktop::OwnedBus bus_;
};

class PanelServer final : public WindowServer {
 public:
  explicit PanelServer(std::shared_ptr<Stage> stage) : stage_(std::move(stage)) {}

  [[nodiscard]] std::shared_ptr<Window> makeWindow(const WindowStyle& style, const Rect& contentRect) override {
    return std::make_shared<Panel>(stage_, style, contentRect);
  }
  void animateAlpha(const std::vector<std::shared_ptr<Window>>& windows, double alpha, Seconds duration,
                    TimingCurve curve, Task completion) override {
    for (const auto& window : windows) {
      if (const auto panel = std::dynamic_pointer_cast<Panel>(window)) panel->fadeTo(alpha, duration, curve);
    }
    if (completion) stage_->loop().asyncAfter(duration, std::move(completion));
  }
  [[nodiscard]] std::unique_ptr<Registration> addLocalKeyDownMonitor(
      std::function<bool(const KeyEvent&)> monitor) override {
    return stage_->keyMonitors.add(std::move(monitor));
  }
  [[nodiscard]] std::unique_ptr<Registration> makeDisplayLink(Task onFrame) override {
    return std::make_unique<DisplayLink>(stage_->loop(), std::move(onFrame));
  }

 private:
  std::shared_ptr<Stage> stage_;
};

}  // namespace

struct GnomePlatform::Services {
  explicit Services(const std::shared_ptr<Stage>& stage)
      : trust(stage),
        taps({[stage] { return stage->hasKeys(); }, [stage](bool some) { stage->setKeysWanted(some); }}),
        panels(stage) {
    stage->setOnKey([this, stage = stage.get()](const KeyEvent& event) {
      if (!taps.deliver(event)) stage->deliver(event);
    });
    stage->setOnKeysChanged([this] { taps.heldChanged(); });
  }
  Trust trust;
  HeldKeyTaps taps;
  MutterIdle idle;
  PanelServer panels;
};

std::unique_ptr<GnomePlatform> GnomePlatform::connect(DisplayUse use, EventLoop& loop, CanvasFactory& canvases,
                                                      const Clock& clock, Stage::Limit limit) {
  Message hello;
  auto link = Link::open(hello);
  // The window is where the extension is switched on, and must not have to start again for it.
  const bool mayComeLater = use == DisplayUse::show && isSession();
  if (!link && !mayComeLater) return nullptr;
  auto stage = std::make_shared<Stage>(std::move(link), hello, loop, canvases, clock, std::move(limit), mayComeLater);
  return std::unique_ptr<GnomePlatform>(new GnomePlatform(std::move(stage), use == DisplayUse::lock));
}

GnomePlatform::GnomePlatform(std::shared_ptr<Stage> stage, bool mayBeAbandoned)
    : mayBeAbandoned_(mayBeAbandoned), stage_(std::move(stage)), services_(std::make_unique<Services>(stage_)) {}

GnomePlatform::~GnomePlatform() {
  stage_->setOnKey({});
  stage_->setOnKeysChanged({});
}

Accessibility& GnomePlatform::accessibility() { return services_->trust; }
EventTaps& GnomePlatform::eventTaps() { return services_->taps; }
InputIdle& GnomePlatform::inputIdle() { return services_->idle; }
WindowServer& GnomePlatform::windows() { return services_->panels; }

}  // namespace dormel::gnome
