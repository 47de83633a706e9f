#include "platform/linux/x11/LayoutX11.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <array>

#include "platform/linux/display/KeyCodes.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {
namespace {

constexpr std::uint16_t WATCHED =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;

constexpr std::uint16_t EVERY_MAP_PART = 0xff;

}  // namespace

void LayoutX11::ContextDeleter::operator()(xkb_context* context) const { xkb_context_unref(context); }
void LayoutX11::KeymapDeleter::operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }

LayoutX11::LayoutX11(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features) {
  if (!connection_ || !features_.xkb) return;
  context_.reset(xkb_context_new(
      static_cast<xkb_context_flags>(XKB_CONTEXT_NO_DEFAULT_INCLUDES | XKB_CONTEXT_NO_ENVIRONMENT_NAMES)));
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
  details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
  xcb_xkb_select_events_aux(*connection_, XCB_XKB_ID_USE_CORE_KBD, WATCHED, 0, 0, EVERY_MAP_PART, EVERY_MAP_PART,
                            &details);
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

LayoutX11::~LayoutX11() = default;

void LayoutX11::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != features_.xkbEvent) return;
  const std::uint8_t type = event.pad0;  // every event of this extension has its kind there
  if (type == XCB_XKB_NEW_KEYBOARD_NOTIFY || type == XCB_XKB_MAP_NOTIFY || type == XCB_XKB_STATE_NOTIFY) {
    keymap_.reset();
  }
}

void LayoutX11::fetch() const {
  if (keymap_ || !context_) return;
  const std::int32_t device = xkb_x11_get_core_keyboard_device_id(*connection_);
  if (device < 0) return;
  keymap_.reset(xkb_x11_keymap_new_from_device(context_.get(), *connection_, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
  if (!keymap_) return;
  xkb_state* state = xkb_x11_state_new_from_device(keymap_.get(), *connection_, device);
  if (state == nullptr) return;
  layout_ = xkb_state_serialize_layout(state, XKB_STATE_LAYOUT_EFFECTIVE);
  xkb_state_unref(state);
}

std::uint32_t LayoutX11::xkbCode(KeyCode keyCode) const {
  for (const char* name : keyNames(keyCode)) {
    const xkb_keycode_t code = xkb_keymap_key_by_name(keymap_.get(), name);
    if (code != XKB_KEYCODE_INVALID) return code;
  }
  const auto codes = KeyCodes().xKeyCodes(keyCode);
  return codes.empty() ? XKB_KEYCODE_INVALID : codes.front();
}

std::optional<std::string> LayoutX11::translate(KeyCode keyCode) const {
  fetch();
  const auto code = keymap_ ? xkbCode(keyCode) : XKB_KEYCODE_INVALID;
  if (code == XKB_KEYCODE_INVALID) return std::nullopt;
  const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(keymap_.get(), code);
  if (layouts == 0) return std::nullopt;
  const xkb_keysym_t* symbols = nullptr;
  const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), code, layout_ % layouts, 0, &symbols);
  std::string text;
  for (int i = 0; i < count; ++i) {
    std::array<char, 8> utf8{};
    // A dead key's accent is no character yet: it yields nothing.
    if (xkb_keysym_to_utf8(symbols[i], utf8.data(), utf8.size()) > 0) text += utf8.data();
  }
  if (text.empty()) return std::nullopt;
  return text;
}

std::string LayoutX11::printedLegend(KeyCode keyCode) const {
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

}  // namespace dormel::x11
