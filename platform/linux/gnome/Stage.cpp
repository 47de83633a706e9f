#include "platform/linux/gnome/Stage.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <type_traits>
#include <utility>

#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/gnome/Panel.h"

namespace dormel::gnome {
namespace {

/// How long the extension goes on without us. The scheduler starts us again after a second; what has not come back
/// after minutes will not, and must not keep anybody locked out.
constexpr Seconds ABSENCE = 120;
/// Where nobody has said how long we may go on.
constexpr Seconds LONGEST_HOLD = 24.0 * 3600;
constexpr Seconds LOOK_EVERY = 5;
constexpr Seconds GIVEN_UP_AFTER = 10;
constexpr int COME_BACK_MILLISECONDS = 250;
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

double overlap(const Rect& a, const Rect& b) {
  return std::max(0.0, std::min(a.right(), b.right()) - std::max(a.x, b.x)) *
         std::max(0.0, std::min(a.top(), b.top()) - std::max(a.y, b.y));
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
  wasCovered_ = held_.cover;
}

Stage::~Stage() = default;

void Stage::start(const Message& hello) {
  isHolding_ = false;
  said_ = nullptr;
  takeMonitors(hello.value("monitors", Message::array()));
  heard("layout", hello.value("layout", Message()));
  takeHeld(hello.value("held", Message::object()));
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
    return overlap(a.at, place) < overlap(b.at, place);
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
    isHolding_ = false;
    said_ = nullptr;
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
  isHolding_ = false;
  held_ = {};
  lostAt_ = clock_.uptime();
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
  lostAt_.reset();
  start(hello);
  wasCovered_ = wasCovered_ || (isLockdown_ && held_.cover);
  update();
  return true;
}

void Stage::connect() {
  if (!link_ && mayComeLater_) reconnect();
}

void Stage::comeBack() {
  if (link_ || reconnect() || mayComeLater_) return;
  if (lostAt_ && clock_.uptime() - *lostAt_ < GIVEN_UP_AFTER) return comeBack_.ask();
  if (const Task onLost = onLost_) onLost();
}

void Stage::setLockdown(bool on) {
  if (!on) wasCovered_ = false;
  isLockdown_ = on;
  update();
}

void Stage::setKeysWanted(bool on) {
  areKeysWanted_ = on;
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
  if (link_ && isHolding_) link_->say(kind, body, descriptor);
}

bool Stage::update() {
  if (!link_) return false;
  const auto visible = visiblePanels();
  if (visible.empty() && !isLockdown_ && !areKeysWanted_) {
    if (std::exchange(isHolding_, false)) link_->say("release", Message::object());
    said_ = nullptr;
    look_ = {};
    return false;
  }
  if (!look_)
    look_ = Timer::repeating(
        loop_, LOOK_EVERY, [this] { update(); }, LOOK_EVERY);
  return hold();
}

bool Stage::hold() {
  const auto visible = visiblePanels();
  const auto isBlack = [](const auto& panel) { return panel->isBlack(); };
  const bool isCovered = isLockdown_ && std::any_of(visible.begin(), visible.end(), isBlack) &&
                         std::all_of(visible.begin(), visible.end(),
                                     [&](const auto& panel) { return !isBlack(panel) || panel->isOpaque(); });
  if (isCovered) wasCovered_ = false;
  const bool isLock = isLockdown_ || wasCovered_;
  const bool hasKeyPanel =
      std::any_of(visible.begin(), visible.end(), [](const auto& panel) { return panel->isKey(); });
  Message next{{"cover", isCovered || wasCovered_},
               {"keys", areKeysWanted_ || hasKeyPanel || wasCovered_},
               {"until", nullptr},
               {"absence", isLock ? ABSENCE : 0},
               {"words", Message::array()}};
  if (isLock) {
    const Seconds left = limit_().value_or(LONGEST_HOLD);
    const Date end = clock_.now() + std::chrono::duration_cast<Date::duration>(std::chrono::duration<Seconds>(left));
    // To whole seconds: the same end must read the same at each look.
    next["until"] = std::round(std::chrono::duration<double>(end.time_since_epoch()).count());
    next["words"] = {"Dormel is starting again.", "This screen is free at " + clockText(end) + " at the latest."};
  }
  if (isHolding_ && said_.is_object()) {
    const bool isSameEnd = next["until"].is_number() && said_["until"].is_number() &&
                           std::abs(next["until"].get<double>() - said_["until"].get<double>()) < 2;
    if (isSameEnd) {
      next["until"] = said_["until"];
      next["words"] = said_["words"];
    }
    if (next == said_) return false;
  }
  link_->say("hold", next);
  said_ = std::move(next);
  if (std::exchange(isHolding_, true)) return false;
  hasHeld_ = true;
  for (const auto& panel : visible) panel->sayAll();
  return true;
}

void Stage::deliver(const KeyEvent& event) {
  std::erase_if(keyMonitors, [](const auto& weak) { return weak.expired(); });
  if (event.type == EventType::keyDown) {
    const auto present = keyMonitors;
    for (const auto& weak : present) {
      const auto monitor = weak.lock();
      if (monitor && (*monitor)(event)) return;
    }
  }
  const auto visible = visiblePanels();
  const auto front = std::find_if(visible.rbegin(), visible.rend(), [](const auto& panel) { return panel->isKey(); });
  if (front != visible.rend()) (*front)->key(event);
}

void Stage::restoreAtExit(bool comesBack, bool mayBeAbandoned) const {
  const std::lock_guard lock(linkMutex_);
  if (link_ && !(comesBack && isLockdown_) && (hasHeld_ || mayBeAbandoned)) link_->releaseNow();
}

}  // namespace dormel::gnome
