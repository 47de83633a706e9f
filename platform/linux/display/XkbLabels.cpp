#include "platform/linux/display/XkbLabels.h"

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <functional>
#include <memory>
#include <utility>

#include "platform/linux/display/KeyCodes.h"

namespace dormel {
namespace {

constexpr KeyCode KEY_CODES = 128;  // those of keys that this program has a name for

/// What the key produces alone in that layout, no modifiers; nothing when that is no character.
std::optional<std::string> characterOn(xkb_keymap& keymap, xkb_layout_index_t layout, xkb_keycode_t key) {
  const xkb_keysym_t* symbols = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(&keymap, key, layout, 0, &symbols);
  std::string text;
  for (int i = 0; i < count; ++i) {
    std::array<char, 8> utf8{};
    // A dead key's accent is no character yet: it yields nothing.
    if (xkb_keysym_to_utf8(symbols[i], utf8.data(), utf8.size()) > 0) text += utf8.data();
  }
  return text.empty() ? std::nullopt : std::optional(text);
}

}  // namespace

void XkbDeleter::operator()(xkb_context* context) const { xkb_context_unref(context); }
void XkbDeleter::operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }

std::string pcLegend(KeyCode keyCode) {
  switch (keyCode) {
    case 54:
      return "Menu / Ctrl";
    case 55:
      return "Super";
    case 58:
    case 61:
      return "Alt";
    default:
      return {};
  }
}

void XkbLabels::setKeymap(std::string_view text) {
  while (text.ends_with('\0')) text.remove_suffix(1);
  const std::size_t hash = std::hash<std::string_view>()(text);
  if (std::exchange(told_, hash) == hash) return;
  readKeymap();  // this one may be none
  unread_ = text;
}

void XkbLabels::readKeymap() const {
  if (unread_.empty()) return;
  const std::string text = std::exchange(unread_, {});
  const std::unique_ptr<xkb_context, XkbDeleter> context(xkb_context_new(
      static_cast<xkb_context_flags>(XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
  if (!context) return;
  const std::unique_ptr<xkb_keymap, XkbDeleter> keymap(xkb_keymap_new_from_buffer(
      context.get(), text.data(), text.size(), XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap) return;
  characters_.clear();
  const KeyCodes numbering;
  for (KeyCode keyCode = 0; keyCode < KEY_CODES; ++keyCode) {
    const auto codes = numbering.xKeyCodes(keyCode);
    if (codes.empty()) continue;
    const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(keymap.get(), codes.front());
    Characters& characters = characters_[keyCode];
    for (xkb_layout_index_t layout = 0; layout < layouts; ++layout) {
      characters.push_back(characterOn(*keymap, layout, codes.front()));
    }
  }
}

std::optional<std::string> XkbLabels::translate(KeyCode keyCode) const {
  readKeymap();
  const auto found = characters_.find(keyCode);
  if (found == characters_.end() || found->second.empty()) return std::nullopt;
  return found->second[layout_ % found->second.size()];
}

}  // namespace dormel
