#include "platform/linux/x11/KeyNumbering.h"

#include <algorithm>
#include <string>
#include <utility>

namespace dormel::x11 {
namespace {

/// Four bytes, padded with zeros where the name is shorter.
std::string nameOf(const char* bytes) {
  constexpr std::size_t LENGTH = 4;
  return {bytes, std::find(bytes, bytes + LENGTH, '\0')};
}

}  // namespace

KeyNumbering::KeyNumbering(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features) {
  if (!connection_ || !features_.xkb) return;
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

const KeyCodes& KeyNumbering::usual() const { return of(XCB_XKB_ID_USE_CORE_KBD); }

const KeyCodes& KeyNumbering::of(std::uint16_t device) const {
  const auto known = known_.find(device);
  if (known != known_.end()) return known->second;
  const bool isExpected = device == XCB_XKB_ID_USE_CORE_KBD && askedUsual_;
  return known_.emplace(device, read(isExpected ? std::move(askedUsual_) : ask(device))).first->second;
}

void KeyNumbering::expectUsual() const {
  if (!known_.contains(XCB_XKB_ID_USE_CORE_KBD) && !askedUsual_) askedUsual_ = ask(XCB_XKB_ID_USE_CORE_KBD);
}

void KeyNumbering::forget() {
  known_.clear();
  askedUsual_ = {};
}

KeyNumbering::Names KeyNumbering::ask(std::uint16_t device) const {
  if (!connection_ || !features_.xkb) return {};
  Connection& c = *connection_;
  xcb_xkb_select_events_details_t details{};
  details.affectNewKeyboard = details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
  details.affectNames = details.namesDetails = XCB_XKB_NAME_DETAIL_KEY_NAMES | XCB_XKB_NAME_DETAIL_KEY_ALIASES;
  xcb_xkb_select_events_aux(c, device, XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_NAMES_NOTIFY, 0, 0,
                            0, 0, &details);
  return {c, xcb_xkb_get_names(c, device, XCB_XKB_NAME_DETAIL_KEY_NAMES | XCB_XKB_NAME_DETAIL_KEY_ALIASES)};
}

KeyCodes KeyNumbering::read(Names asked) {
  const auto reply = asked.take();
  if (!reply) return {};
  xcb_xkb_get_names_value_list_t list{};
  xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(reply.get()), reply->nTypes, reply->indicators,
                                      reply->virtualMods, reply->groupNames, reply->nKeys, reply->nKeyAliases,
                                      reply->nRadioGroups, reply->which, &list);
  std::map<std::string, xcb_keycode_t> names;
  for (int i = 0; (reply->which & XCB_XKB_NAME_DETAIL_KEY_NAMES) != 0 && i < reply->nKeys; ++i) {
    const std::string name = nameOf(list.keyNames[i].name);
    if (!name.empty()) names.emplace(name, static_cast<xcb_keycode_t>(reply->firstKey + i));
  }
  for (int i = 0; (reply->which & XCB_XKB_NAME_DETAIL_KEY_ALIASES) != 0 && i < reply->nKeyAliases; ++i) {
    const auto real = names.find(nameOf(list.keyAliases[i].real));
    if (real != names.end()) names.emplace(nameOf(list.keyAliases[i].alias), real->second);
  }
  return KeyCodes(names);
}

void KeyNumbering::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7f) != features_.xkbEvent) return;
  const std::uint8_t kind = event.pad0;  // every event of this extension has its kind there
  if (kind == XCB_XKB_NEW_KEYBOARD_NOTIFY || kind == XCB_XKB_NAMES_NOTIFY) forget();
}

}  // namespace dormel::x11
