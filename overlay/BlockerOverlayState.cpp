#include "overlay/BlockerOverlayState.h"

#include "platform/Texts.h"
#include "platform/common/Bytes.h"

namespace dormel {
namespace {

constexpr std::size_t LONGEST_TEXT = 256;
constexpr std::size_t MOST_KEYS = 16;

void put(ByteWriter& to, const Color& color) { to.put(color.red).put(color.green).put(color.blue).put(color.alpha); }

Color getColor(ByteReader& from) {
  Color color;
  for (double* part : {&color.red, &color.green, &color.blue, &color.alpha}) *part = from.get<double>();
  return color;
}

std::string getText(ByteReader& from) { return std::string(from.getText(LONGEST_TEXT)); }

}  // namespace

Color BlockerOverlayState::progressColor(Seconds uptime) const {
  const double done = progress(uptime);
  if (done <= 0.4) return color::white(0.30);
  if (done <= 0.8) return color::white(0.50);
  return color::red(0.80);
}

std::string BlockerOverlayState::secondsText(Seconds uptime) const {
  return std::to_string(hold.secondsRemaining(uptime));
}

std::vector<std::string> BlockerOverlayState::plainLines(Seconds uptime, const CanWrite& canWrite) const {
  if (showUnlockConfirm) return {words.unlocked, relockText};
  std::string caps;
  for (const KeyIndicator& key : keys) {
    std::string name = canWrite(key.label) ? key.label : key.usLabel;
    if (!key.legend.empty() && canWrite(key.legend)) name += " (" + key.legend + ")";
    if (!caps.empty()) caps += "    ";
    caps += key.isPressed ? "[" + name + "]" : name;
  }
  const std::string seconds = secondsText(uptime);
  return {"DORMEL", allKeysHeld ? seconds : clock + (amPm.empty() ? "" : " " + amPm), caps,
          filledIn(allKeysHeld ? words.keepHolding : words.hold, {seconds}), words.hint};
}

std::string encoded(const BlockerOverlayState& state) {
  ByteWriter to;
  to.put(state.appeared).put(state.appearDuration).put(state.isFadingOut);
  to.put(static_cast<std::uint8_t>(state.keys.size()));
  for (const KeyIndicator& key : state.keys) {
    to.putText(key.label).putText(key.legend).putText(key.usLabel);
    to.put(key.keyCode).put(key.isPressed).put(key.isModifier);
  }
  to.putText(state.statusText);
  put(to, state.statusColor);
  to.put(state.allKeysHeld).put(state.hold.since.has_value()).put(state.hold.since.value_or(0));
  to.put(state.hold.duration).putText(state.clock).putText(state.amPm);
  to.put(state.showUnlockConfirm).putText(state.relockText);
  for (const std::string* text :
       {&state.words.hint, &state.words.unlocked, &state.words.hold, &state.words.keepHolding}) {
    to.putText(*text);
  }
  return to.take();
}

std::optional<BlockerOverlayState> decodedBlockerOverlay(std::string_view bytes) {
  ByteReader from(bytes);
  BlockerOverlayState state;
  state.appeared = from.get<bool>();
  state.appearDuration = from.get<double>();
  state.isFadingOut = from.get<bool>();
  const auto keys = from.get<std::uint8_t>();
  if (keys > MOST_KEYS) return {};
  for (int i = 0; i < keys; ++i) {
    KeyIndicator& key = state.keys.emplace_back();
    for (std::string* text : {&key.label, &key.legend, &key.usLabel}) *text = getText(from);
    key.keyCode = from.get<KeyCode>();
    key.isPressed = from.get<bool>();
    key.isModifier = from.get<bool>();
  }
  state.statusText = getText(from);
  state.statusColor = getColor(from);
  state.allKeysHeld = from.get<bool>();
  const bool holds = from.get<bool>();
  const auto since = from.get<double>();
  if (holds) state.hold.since = since;
  state.hold.duration = from.get<double>();
  state.clock = getText(from);
  state.amPm = getText(from);
  state.showUnlockConfirm = from.get<bool>();
  state.relockText = getText(from);
  for (std::string* text : {&state.words.hint, &state.words.unlocked, &state.words.hold, &state.words.keepHolding}) {
    *text = getText(from);
  }
  if (!from.isExact()) return {};
  return state;
}

}  // namespace dormel
