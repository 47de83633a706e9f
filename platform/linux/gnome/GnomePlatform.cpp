#include "platform/linux/gnome/GnomePlatform.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <utility>

#include "platform/linux/display/DisplayLink.h"
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
  ~MutterIdle() override { sd_bus_flush_close_unref(bus_); }
  MutterIdle() = default;
  MutterIdle(const MutterIdle&) = delete;
  MutterIdle& operator=(const MutterIdle&) = delete;

  [[nodiscard]] Seconds secondsSinceLast(InputKind /*kind*/) const override {
    if (bus_ == nullptr && sd_bus_open_user(&bus_) < 0) return -1;
    sd_bus_message* call = nullptr;
    sd_bus_message* reply = nullptr;
    std::uint64_t milliseconds = 0;
    const bool isKnown = sd_bus_message_new_method_call(bus_, &call, "org.gnome.Mutter.IdleMonitor",
                                                        "/org/gnome/Mutter/IdleMonitor/Core",
                                                        "org.gnome.Mutter.IdleMonitor", "GetIdletime") >= 0 &&
                         sd_bus_call(bus_, call, IDLE_MICROSECONDS, nullptr, &reply) >= 0 &&
                         sd_bus_message_read_basic(reply, 't', &milliseconds) >= 0;
    sd_bus_message_unref(call);
    sd_bus_message_unref(reply);
    if (!isKnown) bus_ = sd_bus_flush_close_unref(bus_);
    return isKnown ? static_cast<double>(milliseconds) / 1000 : -1;
  }

 private:
  mutable sd_bus* bus_ = nullptr;
};

/// Taps while the extension holds the keys, which is what "enabled" means. What came to us went to nobody else: the
/// verdict of the callback has no effect here.
class Taps final : public EventTaps {
 public:
  explicit Taps(std::shared_ptr<Stage> stage) : shared_(std::make_shared<Shared>()) {
    shared_->stage = std::move(stage);
    shared_->stage->setOnKey([weak = std::weak_ptr(shared_)](const KeyEvent& event) {
      if (const auto shared = weak.lock()) shared->deliver(event);
    });
    shared_->stage->setOnKeysChanged([weak = std::weak_ptr(shared_)] {
      if (const auto shared = weak.lock()) shared->keysChanged();
    });
  }

  [[nodiscard]] std::unique_ptr<EventTap> create(std::function<TapVerdict(const KeyEvent&)> callback) override {
    auto state = std::make_shared<State>();
    state->callback = std::move(callback);
    std::erase_if(shared_->taps, [](const auto& weak) { return weak.expired(); });
    shared_->taps.push_back(state);
    return std::make_unique<Tap>(shared_, std::move(state));
  }

 private:
  struct State {
    std::function<TapVerdict(const KeyEvent&)> callback;
    bool isWanted = false;
    bool wasEnabled = false;
    int sources = 0;
  };
  struct Shared {
    void wantedChanged() {
      stage->setKeysWanted(std::any_of(taps.begin(), taps.end(), [](const auto& weak) {
        const auto state = weak.lock();
        return state && state->isWanted;
      }));
      keysChanged();
    }
    void deliver(const KeyEvent& event) {
      bool isHeard = false;
      const auto present = taps;
      for (const auto& weak : present) {
        const auto state = weak.lock();
        if (!state || state->sources == 0) continue;
        isHeard = true;
        state->callback(event);
      }
      if (!isHeard) stage->deliver(event);
    }
    void keysChanged() {
      const bool has = stage->hasKeys();
      const auto present = taps;
      for (const auto& weak : present) {
        const auto state = weak.lock();
        if (!state || !state->isWanted) continue;
        const bool isLost = std::exchange(state->wasEnabled, has) && !has;
        if (isLost && state->sources > 0) state->callback({EventType::tapDisabledByUserInput, 0, 0});
      }
    }
    std::shared_ptr<Stage> stage;
    std::vector<std::weak_ptr<State>> taps;
  };
  class Source final : public RunLoopSource {
   public:
    explicit Source(std::shared_ptr<State> state) : state_(std::move(state)) { ++state_->sources; }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    ~Source() override { --state_->sources; }

   private:
    std::shared_ptr<State> state_;
  };
  class Tap final : public EventTap {
   public:
    Tap(std::shared_ptr<Shared> shared, std::shared_ptr<State> state)
        : shared_(std::move(shared)), state_(std::move(state)) {}
    Tap(const Tap&) = delete;
    Tap& operator=(const Tap&) = delete;
    ~Tap() override { set(false); }

    void enable(bool on) override { set(on); }
    [[nodiscard]] bool isEnabled() const override { return state_->isWanted && shared_->stage->hasKeys(); }
    [[nodiscard]] std::unique_ptr<RunLoopSource> makeRunLoopSource() override {
      return std::make_unique<Source>(state_);
    }

   private:
    void set(bool on) {
      state_->isWanted = on;
      if (!on) state_->wasEnabled = false;
      shared_->wantedChanged();
    }

    std::shared_ptr<Shared> shared_;
    std::shared_ptr<State> state_;
  };

  std::shared_ptr<Shared> shared_;
};

class MonitorRegistration final : public Registration {
 public:
  explicit MonitorRegistration(std::shared_ptr<KeyMonitor> monitor) : monitor_(std::move(monitor)) {}

 private:
  std::shared_ptr<KeyMonitor> monitor_;
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
    auto shared = std::make_shared<KeyMonitor>(std::move(monitor));
    stage_->keyMonitors.emplace_back(shared);
    return std::make_unique<MonitorRegistration>(std::move(shared));
  }
  [[nodiscard]] std::unique_ptr<Registration> makeDisplayLink(Task onFrame) override {
    return std::make_unique<DisplayLink>(stage_->loop(), std::move(onFrame));
  }

 private:
  std::shared_ptr<Stage> stage_;
};

}  // namespace

struct GnomePlatform::Services {
  explicit Services(const std::shared_ptr<Stage>& stage) : trust(stage), taps(stage), panels(stage) {}
  Trust trust;
  Taps taps;
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

GnomePlatform::~GnomePlatform() = default;

Accessibility& GnomePlatform::accessibility() { return services_->trust; }
EventTaps& GnomePlatform::eventTaps() { return services_->taps; }
InputIdle& GnomePlatform::inputIdle() { return services_->idle; }
WindowServer& GnomePlatform::windows() { return services_->panels; }

}  // namespace dormel::gnome
