#include "platform/linux/x11/EventTapX11.h"

#include <xcb/xinput.h>

#include <utility>

#include "platform/linux/display/KeyTracker.h"
#include "platform/linux/x11/HardwareKeysX11.h"
#include "platform/linux/x11/InputGrab.h"
#include "platform/linux/x11/KeyNumbering.h"

namespace dormel::x11 {
namespace {

class TapX11 : public std::enable_shared_from_this<TapX11> {
 public:
  TapX11(std::shared_ptr<Connection> connection, const ServerFeatures& features,
         std::function<TapVerdict(const KeyEvent&)> callback)
      : connection_(std::move(connection)),
        xinputOpcode_(features.xinputOpcode),
        numbering_(connection_, features),
        callback_(std::move(callback)),
        grab_(connection_, InputGrab::Device::keyboard, [this] {
          deliver({EventType::tapDisabledByUserInput, 0, 0});
        }) {
    selectRawKeys();
    subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
    // Asked for after the raw events: a key that moves in between is in both, and counts. The answer is looked at with
    // the first event; the keyboard is to be taken before.
    wereDown_ = {*connection_, xcb_query_keymap(*connection_)};
  }

  InputGrab& grab() { return grab_; }
  Connection& connection() { return *connection_; }

 private:
  void selectRawKeys() {
    struct Mask {
      xcb_input_event_mask_t head;
      std::uint32_t bits;
    };
    // The masters alone: a key of any keyboard is then told once, with the keyboard as its source.
    Mask keys{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
              XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE};
    Mask devices{{XCB_INPUT_DEVICE_ALL, 1}, XCB_INPUT_XI_EVENT_MASK_HIERARCHY};
    xcb_input_xi_select_events(*connection_, connection_->root(), 1, &keys.head);
    xcb_input_xi_select_events(*connection_, connection_->root(), 1, &devices.head);
  }

  void handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != xinputOpcode_) return;
    const auto self = shared_from_this();  // the callback may remove the tap
    if (wereDown_) {
      for (const std::uint8_t down : keysDown(std::move(wereDown_))) {
        tracker_.seed(down, numbering_.usual().virtualKeyCode(down));
      }
    }
    switch (generic.event_type) {
      case XCB_INPUT_RAW_KEY_PRESS: {
        const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
        const auto code = static_cast<std::uint8_t>(raw.detail);
        const KeyCode meaning = numbering_.of(raw.sourceid).virtualKeyCode(code);
        if (const auto key = tracker_.press(raw.sourceid, code, meaning)) deliver(*key);
        break;
      }
      case XCB_INPUT_RAW_KEY_RELEASE: {
        const auto& raw = reinterpret_cast<const xcb_input_raw_key_release_event_t&>(event);
        if (const auto key = tracker_.release(raw.sourceid, static_cast<std::uint8_t>(raw.detail))) deliver(*key);
        break;
      }
      case XCB_INPUT_HIERARCHY:
        numbering_.forget();
        forgetDepartedKeyboards(reinterpret_cast<const xcb_input_hierarchy_event_t&>(event));
        break;
      default:
        break;
    }
  }

  void forgetDepartedKeyboards(const xcb_input_hierarchy_event_t& event) {
    constexpr std::uint32_t GONE = XCB_INPUT_HIERARCHY_MASK_SLAVE_REMOVED | XCB_INPUT_HIERARCHY_MASK_DEVICE_DISABLED |
                                   XCB_INPUT_HIERARCHY_MASK_SLAVE_DETACHED;
    for (auto it = xcb_input_hierarchy_infos_iterator(&event); it.rem > 0; xcb_input_hierarchy_info_next(&it)) {
      if ((it.data->flags & GONE) == 0) continue;
      for (const KeyEvent& key : tracker_.releaseAll(it.data->deviceid)) deliver(key);
    }
  }

  void deliver(const KeyEvent& event) { callback_(event); }

  std::shared_ptr<Connection> connection_;
  std::uint8_t xinputOpcode_;
  KeyNumbering numbering_;
  std::function<TapVerdict(const KeyEvent&)> callback_;
  KeyTracker tracker_;
  Asked<&xcb_query_keymap_reply> wereDown_;
  Subscription subscription_;
  InputGrab grab_;
};

class SourceX11 : public RunLoopSource {
 public:
  explicit SourceX11(std::shared_ptr<TapX11> tap) : tap_(std::move(tap)) { tap_->connection().startPumping(); }
  SourceX11(const SourceX11&) = delete;
  SourceX11& operator=(const SourceX11&) = delete;
  ~SourceX11() override { tap_->connection().stopPumping(); }

 private:
  std::shared_ptr<TapX11> tap_;
};

class EventTapX11 : public EventTap {
 public:
  EventTapX11(std::shared_ptr<TapX11> tap, std::shared_ptr<AccessXSuspension> care)
      : tap_(std::move(tap)), care_(std::move(care)) {}
  EventTapX11(const EventTapX11&) = delete;
  EventTapX11& operator=(const EventTapX11&) = delete;
  ~EventTapX11() override { take(false); }  // a source may keep the rest of it alive

  void enable(bool on) override { take(on); }
  [[nodiscard]] bool isEnabled() const override { return tap_->grab().isHeld(); }
  [[nodiscard]] std::unique_ptr<RunLoopSource> makeRunLoopSource() override {
    return std::make_unique<SourceX11>(tap_);
  }

 private:
  void take(bool on) {
    if (on) careHold_ = care_->hold();  // before the first key is swallowed
    tap_->grab().want(on);
    if (!on) careHold_.reset();
  }

  std::shared_ptr<TapX11> tap_;
  std::shared_ptr<AccessXSuspension> care_;
  AccessXSuspension::Hold careHold_;
};

}  // namespace

EventTapsX11::EventTapsX11(std::shared_ptr<Connection> connection, const ServerFeatures& features,
                           std::shared_ptr<AccessXSuspension> care)
    : connection_(std::move(connection)), features_(features), care_(std::move(care)) {}

std::unique_ptr<EventTap> EventTapsX11::create(std::function<TapVerdict(const KeyEvent&)> callback) {
  if (!connection_ || !features_.xinput22 || features_.xwayland) return nullptr;
  auto own = Connection::open(connection_->loop(), connection_->display());
  if (!own) return nullptr;
  features_.announceInput(*own);
  own->setOnLost(onLost_);
  return std::make_unique<EventTapX11>(std::make_shared<TapX11>(std::move(own), features_, std::move(callback)), care_);
}

}  // namespace dormel::x11
