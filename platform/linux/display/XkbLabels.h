// What a keymap prints on the keys. Main thread only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Keyboard.h"

struct xkb_context;
struct xkb_keymap;

namespace dormel {

struct XkbDeleter {
  void operator()(xkb_context* context) const;
  void operator()(xkb_keymap* keymap) const;
};

/// What PC keyboards print on a modifier key; empty for all others.
[[nodiscard]] std::string pcLegend(KeyCode keyCode);

/// The keymap that a compositor hands out as text, and which of its layouts is in force.
class XkbLabels : public KeyboardLayout {
 public:
  /// Text that is no keymap leaves the one before in force. It is read when a label is asked for: that takes
  /// milliseconds, and a lock waits for no label.
  void setKeymap(std::string_view text);
  void setLayout(std::uint32_t layout) { layout_ = layout; }

  [[nodiscard]] std::optional<std::string> translate(KeyCode keyCode) const override;
  [[nodiscard]] std::string printedLegend(KeyCode keyCode) const override { return pcLegend(keyCode); }

 private:
  using Characters = std::vector<std::optional<std::string>>;  ///< by layout

  void readKeymap() const;

  std::size_t told_ = 0;  ///< the hash of the text told last: every new focus may bring the same again
  mutable std::string unread_;
  mutable std::map<KeyCode, Characters> characters_;  ///< kept instead of the keymap, which is a hundred times larger
  std::uint32_t layout_ = 0;
};

}  // namespace dormel
