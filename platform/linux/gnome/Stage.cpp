#include "platform/linux/gnome/Stage.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <type_traits>
#include <utility>

#include "platform/CommonArea.h"
#include "platform/Texts.h"
#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/gnome/Panel.h"

namespace dormel::gnome {
namespace {

constexpr int COME_BACK_MILLISECONDS = static_cast<int>(HoldPlan::COME_BACK_EVERY * 1000);
constexpr int EVDEV_OFFSET = 8;
constexpr KeyTracker::Source KEYBOARD = 1;

std::optional<Rect> rectOf(const Message& told, const char* name) {
  const auto found = told.find(name);
  if (found == told.end() || !found->is_array() || found->size() != 4) return std::nullopt;
  for (const Message& value : *found) {
    if (!value.is_number()) return std::nullopt;
  }
  return Rect{(*found)[0].get<double>(), (*found)[1].get<double>(), (*found)[2].get<double>(),
              (*found)[3].get<double>()};
}

template <typename Value>
Value valueOf(const Message& body, const char* name, Value otherwise) {
  const auto found = body.find(name);
  if (found == body.end()) return otherwise;
  if constexpr (std::is_same_v<Value, bool>) {
    return found->is_boolean() ? found->get<bool>() : otherwise;
  } else {
    return found->is_number() ? found->get<Value>() : otherwise;
  }
}

std::string clockText(Date date) {
  const std::time_t time =
      std::chrono::system_clock::to_time_t(std::chrono::time_point_cast<std::chrono::system_clock::duration>(date));
  std::tm local{};
  ::localtime_r(&time, &local);
  std::array<char, 16> text{};
  return std::string(text.data(), std::strftime(text.data(), text.size(), "%H:%M", &local));
}

/// The text of the keymap that xkb has by this name: "de", or "de+neo" with a variant.
std::string keymapNamed(const std::string& name) {
  const auto plus = name.find('+');
  const std::string layout = name.substr(0, plus);
  const std::string variant = plus == std::string::npos ? std::string() : name.substr(plus + 1);
  xkb_rule_names names{};
  names.layout = layout.c_str();
  names.variant = variant.c_str();
  const std::unique_ptr<xkb_context, XkbDeleter> context(xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES));
  if (!context) return {};
  const std::unique_ptr<xkb_keymap, XkbDeleter> keymap(
      xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap) return {};
  const std::unique_ptr<char, decltype(&std::free)> text(
      xkb_keymap_get_as_string(keymap.get(), XKB_KEYMAP_FORMAT_TEXT_V1), &std::free);
  return text ? text.get() : std::string();
}

}  // namespace

std::vector<Monitor> monitorsOf(const Message& told) {
  std::vector<Monitor> monitors;
  if (!told.is_array()) return monitors;
  for (const Message& one : told) {
    if (!one.is_object()) continue;
    const auto at = rectOf(one, "at");
    if (!at || at->width < 1 || at->height < 1) continue;
    const double scale = valueOf(one, "scale", 1.0);
    monitors.push_back({*at, rectOf(one, "work").value_or(*at), scale > 0 ? scale : 1, valueOf(one, "primary", false)});
  }
  return monitors;
}

Rect flipped(const Rect& rect, const Monitor& main) {
  return {rect.x, main.at.height - rect.y - rect.height, rect.width, rect.height};
}

std::vector<Screen> screensOf(const std::vector<Monitor>& monitors) {
  std::vector<Screen> screens;
  const auto primary = std::find_if(monitors.begin(), monitors.end(), [](const Monitor& one) { return one.isPrimary; });
  if (monitors.empty()) return screens;
  const Monitor& main = primary == monitors.end() ? monitors.front() : *primary;
  const auto below = [&](const Rect& rect) {
    return Rect{rect.x - main.at.x, rect.y - main.at.y, rect.width, rect.height};
  };
  int number = 0;
  for (const Monitor& monitor : monitors) {
    const Rect bounds = below(monitor.at);
    screens.push_back(
        {"Monitor " + std::to_string(++number), flipped(bounds, main), flipped(below(monitor.work), main), bounds});
  }
  return screens;
}

Stage::Stage(std::unique_ptr<Link> link, const Message& hello, EventLoop& loop, CanvasFactory& canvases,
             const Clock& clock, Limit limit, bool mayComeLater)
    : loop_(loop),
      canvases_(canvases),
      clock_(clock),
      limit_(std::move(limit)),
      mayComeLater_(mayComeLater),
      link_(std::move(link)),
      update_(loop, [this] { update(); }),
      comeBack_(
          loop, [this] { comeBack(); }, COME_BACK_MILLISECONDS) {
  if (!link_) return;
  start(hello);
}

Stage::~Stage() = default;

void Stage::start(const Message& hello) {
  plan_.refused();
  takeMonitors(hello.value("monitors", Message::array()));
  heard("layout", hello.value("layout", Message()));
  takeHeld(hello.value("held", Message::object()));
  plan_.connected(valueOf(hello, "covered", held_.cover));
  link_->start(
      loop_, [this](const std::string& kind, const Message& body) { heard(kind, body); }, [this] { lost(); });
}

std::optional<Screen> Stage::main() const {
  const auto screens = all();
  for (std::size_t i = 0; i < screens.size(); ++i) {
    if (monitors_[i].isPrimary) return screens[i];
  }
  return screens.empty() ? std::nullopt : std::optional(screens.front());
}

const Monitor& Stage::mainMonitor() const {
  static const Monitor none;
  if (monitors_.empty()) return none;
  const auto primary =
      std::find_if(monitors_.begin(), monitors_.end(), [](const Monitor& one) { return one.isPrimary; });
  return primary == monitors_.end() ? monitors_.front() : *primary;
}

Rect Stage::toShell(const Rect& rect) const {
  const Monitor& main = mainMonitor();
  const Rect below = flipped(rect, main);
  return {below.x + main.at.x, below.y + main.at.y, below.width, below.height};
}

double Stage::scaleAt(const Rect& place) const {
  const auto found = std::max_element(monitors_.begin(), monitors_.end(), [&](const Monitor& a, const Monitor& b) {
    return commonArea(a.at, place) < commonArea(b.at, place);
  });
  return found == monitors_.end() ? 1 : found->scale;
}

void Stage::heard(const std::string& kind, const Message& body) {
  if (kind == "key") {
    heardKey(body);
  } else if (kind == "held") {
    takeHeld(body);
  } else if (kind == "monitors") {
    takeMonitors(body);
  } else if (kind == "layout" && body.is_string()) {
    labels_.setKeymap(keymapNamed(body.get<std::string>()));
  } else if (kind == "pointer" || kind == "frame") {
    for (const auto& panel : visiblePanels()) panel->heard(kind, body);
  } else if (kind == "refused") {
    // Somebody else's lock is up, and the next look asks again; or the clock was set, and our end is another one.
    plan_.refused();
    if (body.value("why", "") == "over") update_.ask();
    if (const Task changed = onKeysChanged_) changed();
  }
}

void Stage::pass(const std::optional<KeyEvent>& event) {
  const auto onKey = onKey_;
  if (event && onKey) onKey(*event);
}

void Stage::heardKey(const Message& body) {
  const int code = valueOf(body, "code", 0);
  if (code <= 0 || code > std::numeric_limits<std::uint8_t>::max() - EVDEV_OFFSET) return;
  const auto keycode = static_cast<std::uint8_t>(code + EVDEV_OFFSET);
  pass(valueOf(body, "down", false) ? keys_.press(KEYBOARD, keycode, KeyCodes().virtualKeyCode(keycode))
                                    : keys_.release(KEYBOARD, keycode));
}

void Stage::takeHeld(const Message& body) {
  const bool had = hasKeys();
  held_ = {valueOf(body, "cover", false), valueOf(body, "keys", false)};
  if (hasKeys() == had) return;
  // Whoever has them now sees what is let go meanwhile.
  if (had) {
    for (const KeyEvent& event : keys_.releaseAll(KEYBOARD)) pass(event);
  }
  if (const Task changed = onKeysChanged_) changed();
}

void Stage::takeMonitors(const Message& body) {
  auto monitors = monitorsOf(body);
  // Between two configurations there may be none: nobody is to be uncovered by it.
  if (monitors.empty() || monitors == monitors_) return;
  monitors_ = std::move(monitors);
  for (const auto& panel : visiblePanels()) panel->monitorsChanged();
  if (const Task changed = onScreensChanged_) loop_.async(changed);
}

void Stage::lost() {
  const bool had = hasKeys();
  {
    const std::lock_guard lock(linkMutex_);
    link_.reset();
  }
  plan_.lost(clock_.uptime());
  held_ = {};
  for (const KeyEvent& event : keys_.releaseAll(KEYBOARD)) pass(event);
  if (const Task changed = onKeysChanged_; had && changed) changed();
  comeBack_.ask();
}

bool Stage::reconnect() {
  Message hello;
  auto link = Link::open(hello);
  if (!link) return false;
  {
    const std::lock_guard lock(linkMutex_);
    link_ = std::move(link);
  }
  start(hello);
  update();
  return true;
}

void Stage::connect() {
  if (!link_ && mayComeLater_) reconnect();
}

void Stage::comeBack() {
  if (link_ || reconnect() || mayComeLater_) return;
  if (!plan_.isGivenUp(clock_.uptime())) return comeBack_.ask();
  if (const Task onLost = onLost_) onLost();
}

void Stage::setLockdown(bool on) {
  isLockdown_ = on;
  plan_.setLockdown(on);
  update();
}

void Stage::setKeysWanted(bool on) {
  plan_.setKeysWanted(on);
  update();
}

std::vector<std::shared_ptr<Panel>> Stage::visiblePanels() const {
  std::vector<std::shared_ptr<Panel>> visible;
  for (const auto& weak : panels_) {
    auto panel = weak.lock();
    if (panel && panel->isVisible()) visible.push_back(std::move(panel));
  }
  return visible;
}

bool Stage::raised(const std::shared_ptr<Panel>& panel) {
  std::erase_if(panels_, [&](const auto& weak) { return weak.expired() || weak.lock() == panel; });
  panels_.push_back(panel);
  return update();
}

void Stage::say(const std::string& kind, const Message& body, int descriptor) {
  if (link_ && isHolding()) link_->say(kind, body, descriptor);
}

HoldPlan::Panels Stage::seenPanels() const {
  HoldPlan::Panels seen;
  for (const auto& panel : visiblePanels()) {
    seen.areAny = true;
    seen.isAnyBlack = seen.isAnyBlack || panel->isBlack();
    seen.areBlackOpaque = seen.areBlackOpaque && (!panel->isBlack() || panel->isOpaque());
    seen.isAnyKey = seen.isAnyKey || panel->isKey();
  }
  return seen;
}

bool Stage::update() {
  if (!link_) return false;
  const HoldPlan::Panels seen = seenPanels();
  if (!plan_.isWanted(seen)) look_ = {};
  if (plan_.isWanted(seen) && !look_) {
    look_ = Timer::repeating(
        loop_, HoldPlan::LOOK_EVERY, [this] { update(); }, HoldPlan::LOOK_EVERY);
  }
  const HoldPlan::Step step = plan_.next(seen, clock_.now(), limit_);
  if (step == HoldPlan::Step::release) link_->say("release", Message::object());
  if (step == HoldPlan::Step::hold || step == HoldPlan::Step::holdAnew) sayHold();
  if (step != HoldPlan::Step::holdAnew) return false;
  for (const auto& panel : visiblePanels()) panel->sayAll();
  return true;
}

void Stage::sayHold() {
  const ShellHold& hold = plan_.hold();
  Message said{{"cover", hold.cover},
               {"keys", hold.keys},
               {"until", nullptr},
               {"absence", hold.absence},
               {"words", Message::array()}};
  if (hold.until) {
    said["until"] = std::chrono::duration<double>(hold.until->time_since_epoch()).count();
    said["words"] = {translate("Dormel is starting again."),
                     translate("This screen is free at %1 at the latest.", {clockText(*hold.until)})};
  }
  link_->say("hold", said);
  hasHeld_ = true;
}

void Stage::deliver(const KeyEvent& event) {
  if (event.type == EventType::keyDown && keyMonitors.swallow(event)) return;
  const auto visible = visiblePanels();
  const auto front = std::find_if(visible.rbegin(), visible.rend(), [](const auto& panel) { return panel->isKey(); });
  if (front != visible.rend()) (*front)->key(event);
}

void Stage::restoreAtExit(bool comesBack, bool mayBeAbandoned) const {
  const std::lock_guard lock(linkMutex_);
  if (link_ && !(comesBack && isLockdown_) && (hasHeld_ || mayBeAbandoned)) link_->releaseNow();
}

}  // namespace dormel::gnome
