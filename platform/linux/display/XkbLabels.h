// What a keymap prints on the keys. Main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Keyboard.h"

struct xkb_context;
struct xkb_keymap;

namespace dormel {

struct XkbDeleter {
  void operator()(xkb_context* context) const;
  void operator()(xkb_keymap* keymap) const;
};

/// What `keymap` produces for the key alone in its layout number `layout`, no modifiers; nothing when that is no
/// character.
[[nodiscard]] std::optional<std::string> characterOn(xkb_keymap& keymap, std::uint32_t layout, KeyCode keyCode);

/// What PC keyboards print on a modifier key; empty for all others.
[[nodiscard]] std::string pcLegend(KeyCode keyCode);

/// The keymap that a compositor hands out as text, and which of its layouts is in force.
class XkbLabels : public KeyboardLayout {
 public:
  XkbLabels();
  ~XkbLabels() override;

  /// Text that is no keymap leaves the one before in force.
  void setKeymap(std::string_view text);
  void setLayout(std::uint32_t layout) { layout_ = layout; }

  [[nodiscard]] std::optional<std::string> translate(KeyCode keyCode) const override;
  [[nodiscard]] std::string printedLegend(KeyCode keyCode) const override { return pcLegend(keyCode); }

 private:
  std::unique_ptr<xkb_context, XkbDeleter> context_;
  std::unique_ptr<xkb_keymap, XkbDeleter> keymap_;
  std::string text_;
  std::uint32_t layout_ = 0;
};

}  // namespace dormel
