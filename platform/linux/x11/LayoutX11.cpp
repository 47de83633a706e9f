#include "platform/linux/x11/LayoutX11.h"

#include <xkbcommon/xkbcommon.h>

#include <array>

#include "platform/linux/display/XkbLabels.h"
#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {
namespace {

constexpr std::uint16_t WATCHED =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;

constexpr std::uint16_t EVERY_MAP_PART = 0xff;

/// How many layouts a key has, in its group information.
constexpr unsigned LAYOUTS_OF_A_KEY = 0x0f;

}  // namespace

LayoutX11::LayoutX11(std::shared_ptr<Connection> connection, const ServerFeatures& features,
                     const KeyNumbering& numbering)
    : connection_(std::move(connection)), features_(features), numbering_(numbering) {
  if (!connection_ || !features_.xkb) return;
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.affectState = XCB_XKB_STATE_PART_GROUP_STATE;
  details.stateDetails = XCB_XKB_STATE_PART_GROUP_STATE;
  xcb_xkb_select_events_aux(*connection_, XCB_XKB_ID_USE_CORE_KBD, WATCHED, 0, 0, EVERY_MAP_PART, EVERY_MAP_PART,
                            &details);
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

void LayoutX11::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != features_.xkbEvent) return;
  const std::uint8_t type = event.pad0;  // every event of this extension has its kind there
  if (type == XCB_XKB_NEW_KEYBOARD_NOTIFY || type == XCB_XKB_MAP_NOTIFY || type == XCB_XKB_STATE_NOTIFY) {
    symbols_.reset();
  }
}

void LayoutX11::fetch() const {
  if (symbols_ || !connection_ || !features_.xkb) return;
  Connection& c = *connection_;
  // All that a label needs, in one round trip.
  Asked<&xcb_xkb_get_map_reply> askedMap(c, xcb_xkb_get_map(c, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_MAP_PART_KEY_SYMS, 0, 0,
                                                            0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  Asked<&xcb_xkb_get_state_reply> askedState(c, xcb_xkb_get_state(c, XCB_XKB_ID_USE_CORE_KBD));
  numbering_.expectUsual();
  const auto map = askedMap.take();
  const auto state = askedState.take();
  if (!map || !state || (map->present & XCB_XKB_MAP_PART_KEY_SYMS) == 0) return;
  xcb_xkb_get_map_map_t parts{};
  xcb_xkb_get_map_map_unpack(xcb_xkb_get_map_map(map.get()), map->nTypes, map->nKeySyms, map->nKeyActions,
                             map->totalActions, map->totalKeyBehaviors, map->virtualMods, map->totalKeyExplicit,
                             map->totalModMapKeys, map->totalVModMapKeys, map->present, &parts);
  symbols_.emplace();
  unsigned code = map->firstKeySym;
  for (auto key = xcb_xkb_get_map_map_syms_rtrn_iterator(map.get(), &parts); key.rem > 0 && code < symbols_->size();
       xcb_xkb_key_sym_map_next(&key), ++code) {
    const unsigned layouts = key.data->groupInfo & LAYOUTS_OF_A_KEY;
    if (layouts == 0) continue;
    const unsigned at = state->group % layouts * key.data->width;
    if (at < key.data->nSyms) symbols_->at(code) = xcb_xkb_key_sym_map_syms(key.data)[at];
  }
}

std::optional<std::string> LayoutX11::translate(KeyCode keyCode) const {
  fetch();
  if (!symbols_) return std::nullopt;
  const auto codes = numbering_.usual().xKeyCodes(keyCode);
  if (codes.empty()) return std::nullopt;
  std::array<char, 8> utf8{};
  // A dead key's accent is no character yet: it yields nothing.
  if (xkb_keysym_to_utf8(symbols_->at(codes.front()), utf8.data(), utf8.size()) <= 0 || utf8.front() == '\0') {
    return std::nullopt;
  }
  return utf8.data();
}

std::string LayoutX11::printedLegend(KeyCode keyCode) const { return pcLegend(keyCode); }

}  // namespace dormel::x11
