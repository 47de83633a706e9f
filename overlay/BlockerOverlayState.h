// What a locked-out user sees on a screen at one moment, as plain values: all that drawing it needs to be told. The
// hold stands in it by its beginning and its length, so that a moving picture asks nobody.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "challenge/Hold.h"
#include "overlay/Color.h"
#include "platform/Keyboard.h"
#include "platform/PaintedView.h"

namespace dormel {

/// One key cap. Modifiers are wider, with a smaller label. Where this keyboard prints something else on a modifier, or
/// a letter's label does not say which key it is, there is a small legend below.
struct KeyIndicator {
  std::string label;
  std::string legend;
  std::string usLabel;  ///< in letters that every font has
  KeyCode keyCode = 0;
  bool isPressed = false;
  bool isModifier = false;

  [[nodiscard]] double width() const { return isModifier ? 80 : 68; }
  [[nodiscard]] static constexpr double height() { return 68; }
  [[nodiscard]] double labelSize() const { return isModifier ? 13 : 28; }
  [[nodiscard]] Color labelColor() const { return isPressed ? color::black(1) : color::white(0.70); }
  [[nodiscard]] Color fill() const { return isPressed ? color::white(1) : color::white(isModifier ? 0.05 : 0.08); }
  [[nodiscard]] Color border() const { return color::white(isPressed ? 0 : 0.15); }
  friend bool operator==(const KeyIndicator&, const KeyIndicator&) = default;
};

/// Texts that never change during a lock, in the session's language: the painter knows none.
struct BlockerOverlayWords {
  std::string hint;         ///< how to get other keys
  std::string unlocked;     ///< the confirmation
  std::string hold;         ///< plain lines only: what to do; %1 is the number of seconds
  std::string keepHolding;  ///< plain lines only: %1 are the seconds left
  friend bool operator==(const BlockerOverlayWords&, const BlockerOverlayWords&) = default;
};

struct BlockerOverlayState {
  /// Drives the fade-in of the whole overlay (opacity 0 and, for the column, 20 lower, while false).
  bool appeared = false;
  /// How long the change of `appeared` is to be animated (ease-out): 2.5 s, or 0 for at once.
  Seconds appearDuration = 0;
  /// The column's opacity is 0 before it appeared and while this is true.
  bool isFadingOut = false;

  std::vector<KeyIndicator> keys;

  /// The line below the keys, and its colour.
  std::string statusText;
  Color statusColor;

  /// While all keys are held the dial shows the seconds left and is to be redrawn on every display frame.
  bool allKeysHeld = false;
  Hold hold;

  /// Else it shows the time; `amPm` is empty in 24-hour form.
  std::string clock;
  std::string amPm;

  /// The message that it is unlocked, in place of dial, keys and hint; `relockText` is empty outside a grace period.
  bool showUnlockConfirm = false;
  std::string relockText;

  BlockerOverlayWords words;

  [[nodiscard]] double progress(Seconds uptime) const { return hold.progress(uptime); }
  [[nodiscard]] Color progressColor(Seconds uptime) const;
  [[nodiscard]] std::string secondsText(Seconds uptime) const;
  /// As PaintedView::plainLines.
  [[nodiscard]] std::vector<std::string> plainLines(Seconds uptime, const CanWrite& canWrite) const;

  friend bool operator==(const BlockerOverlayState&, const BlockerOverlayState&) = default;
};

[[nodiscard]] std::string encoded(const BlockerOverlayState& state);
/// Nothing when the bytes are not exactly one state.
[[nodiscard]] std::optional<BlockerOverlayState> decodedBlockerOverlay(std::string_view bytes);

}  // namespace dormel
