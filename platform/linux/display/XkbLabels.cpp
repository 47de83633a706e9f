#include "platform/linux/display/XkbLabels.h"

#include <xkbcommon/xkbcommon.h>

#include <array>

#include "platform/linux/display/KeyCodes.h"

namespace dormel {

void XkbDeleter::operator()(xkb_context* context) const { xkb_context_unref(context); }
void XkbDeleter::operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }

std::optional<std::string> characterOn(xkb_keymap& keymap, std::uint32_t layout, KeyCode keyCode) {
  const auto codes = KeyCodes().xKeyCodes(keyCode);
  if (codes.empty()) return std::nullopt;
  const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(&keymap, codes.front());
  if (layouts == 0) return std::nullopt;
  const xkb_keysym_t* symbols = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(&keymap, codes.front(), layout % layouts, 0, &symbols);
  std::string text;
  for (int i = 0; i < count; ++i) {
    std::array<char, 8> utf8{};
    // A dead key's accent is no character yet: it yields nothing.
    if (xkb_keysym_to_utf8(symbols[i], utf8.data(), utf8.size()) > 0) text += utf8.data();
  }
  if (text.empty()) return std::nullopt;
  return text;
}

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

XkbLabels::XkbLabels()
    : context_(xkb_context_new(
          static_cast<xkb_context_flags>(XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES))) {}

XkbLabels::~XkbLabels() = default;

void XkbLabels::setKeymap(std::string_view text) {
  while (text.ends_with('\0')) text.remove_suffix(1);
  // Every new focus may bring it anew, and compiling one takes milliseconds.
  if (!context_ || text == text_) return;
  auto* const keymap = xkb_keymap_new_from_buffer(context_.get(), text.data(), text.size(), XKB_KEYMAP_FORMAT_TEXT_V1,
                                                  XKB_KEYMAP_COMPILE_NO_FLAGS);
  if (keymap == nullptr) return;
  keymap_.reset(keymap);
  text_ = text;
}

std::optional<std::string> XkbLabels::translate(KeyCode keyCode) const {
  return keymap_ ? characterOn(*keymap_, layout_, keyCode) : std::nullopt;
}

}  // namespace dormel
