#include "platform/linux/x11/ServerHotkeys.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace dormel::x11 {
namespace {

// Kinds of action, as the keyboard extension numbers them.
constexpr std::uint8_t NO_ACTION = XCB_XKB_SA_TYPE_NO_ACTION;
constexpr std::uint8_t TERMINATE = XCB_XKB_SA_TYPE_TERMINATE;
constexpr std::uint8_t SWITCH_SCREEN = XCB_XKB_SA_TYPE_SWITCH_SCREEN;
constexpr std::uint8_t SERVER_PRIVATE = 0x86;  // "ungrab", "close grabs", "next video mode" and the like

constexpr std::uint16_t EVERY_MAP_PART = 0xff;

bool isWayOut(const xcb_xkb_action_t& action) {
  return action.type == TERMINATE || action.type == SWITCH_SCREEN || action.type == SERVER_PRIVATE;
}

}  // namespace

/// The actions of one keyboard: `counts[i]` of them for key `firstKey + i`, all in a row.
struct ServerHotkeys::Keymap {
  std::uint16_t device = 0;
  xcb_keycode_t minKeyCode = 0;
  xcb_keycode_t maxKeyCode = 0;
  xcb_keycode_t firstKey = 0;
  std::vector<std::uint8_t> counts;
  std::vector<xcb_xkb_action_t> actions;

  /// Calls `visit(keycode, index, action)` for each action.
  template <typename Visit>
  void forEach(Visit visit) {
    std::size_t next = 0;
    for (std::size_t key = 0; key < counts.size(); ++key) {
      for (std::uint32_t index = 0; index < counts[key]; ++index) {
        visit(static_cast<std::uint32_t>(firstKey + key), index, actions[next++]);
      }
    }
  }
};

ServerHotkeys::ServerHotkeys(std::shared_ptr<Connection> connection, const ServerFeatures& features)
    : connection_(std::move(connection)), features_(features) {
  property_ = connection_->atom("_DORMEL_KEY_ACTIONS");
}

ServerHotkeys::Keymaps ServerHotkeys::ask(const KeyDevices& devices) {
  Keymaps keymaps;
  if (!features_.xkb) return keymaps;
  keymaps.devices = devices;
  for (const std::uint16_t device : devices) {
    const auto cookie = xcb_xkb_get_map(*connection_, device, XCB_XKB_MAP_PART_KEY_ACTIONS, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                        0, 0, 0, 0, 0, 0, 0);
    keymaps.asked.emplace_back(*connection_, cookie);
  }
  return keymaps;
}

std::vector<ServerHotkeys::Keymap> ServerHotkeys::answers(Keymaps asked) {
  std::vector<Keymap> keymaps;
  for (std::size_t i = 0; i < asked.devices.size(); ++i) {
    const auto reply = asked.asked[i].take();
    if (!reply || (reply->present & XCB_XKB_MAP_PART_KEY_ACTIONS) == 0) continue;  // no keys on this device
    Keymap keymap;
    keymap.device = asked.devices[i];
    keymap.minKeyCode = reply->minKeyCode;
    keymap.maxKeyCode = reply->maxKeyCode;
    keymap.firstKey = reply->firstKeyAction;
    // Only this part was asked for: the counts, padded to four bytes, then the actions.
    const auto* counts = static_cast<const std::uint8_t*>(xcb_xkb_get_map_map(reply.get()));
    keymap.counts.assign(counts, counts + reply->nKeyActions);
    const auto* actions = counts + (std::size_t{reply->nKeyActions} + 3) / 4 * 4;
    keymap.actions.resize(reply->totalActions);
    if (!keymap.actions.empty()) {
      std::memcpy(keymap.actions.data(), actions, keymap.actions.size() * sizeof(xcb_xkb_action_t));
    }
    keymaps.push_back(std::move(keymap));
  }
  return keymaps;
}

void ServerHotkeys::store(const Keymap& keymap) {
  const std::size_t actionsAt = (keymap.counts.size() + 3) / 4 * 4;
  const auto* actions = reinterpret_cast<const std::uint8_t*>(keymap.actions.data());
  std::vector<std::uint8_t> values(actionsAt + keymap.actions.size() * sizeof(xcb_xkb_action_t));
  std::copy(keymap.counts.begin(), keymap.counts.end(), values.begin());
  std::copy_n(actions, values.size() - actionsAt, values.begin() + static_cast<std::ptrdiff_t>(actionsAt));
  xcb_xkb_set_map(*connection_, keymap.device, XCB_XKB_MAP_PART_KEY_ACTIONS, 0, keymap.minKeyCode, keymap.maxKeyCode, 0,
                  0, 0, 0, 0, keymap.firstKey, static_cast<std::uint8_t>(keymap.counts.size()),
                  static_cast<std::uint16_t>(keymap.actions.size()), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                  values.data());
}

bool ServerHotkeys::watch(const std::vector<Keymap>& keymaps) {
  bool isNews = false;
  for (const Keymap& keymap : keymaps) {
    // Of devices with keys alone: the server never gets rid of an interest in a keymap on a device that has none, and
    // hangs when that device goes.
    if (std::find(watched_.begin(), watched_.end(), keymap.device) != watched_.end()) continue;
    constexpr std::uint16_t WATCHED = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    xcb_xkb_select_events_aux(*connection_, keymap.device, WATCHED, 0, 0, EVERY_MAP_PART, EVERY_MAP_PART, &details);
    watched_.push_back(keymap.device);
    isNews = true;
  }
  return isNews;
}

bool ServerHotkeys::disarm(Keymaps asked) {
  if (!features_.xkb) return false;
  const KeyDevices all = asked.devices;
  // A device that went away may come back under its number, with nobody watching it.
  std::erase_if(watched_, [&](std::uint16_t d) { return std::find(all.begin(), all.end(), d) == all.end(); });
  auto found = answers(std::move(asked));
  const bool isNews = watch(found);
  std::vector<Keymap> changed;
  for (Keymap& keymap : found) {
    bool isChanged = false;
    keymap.forEach([&](std::uint32_t keycode, std::uint32_t index, xcb_xkb_action_t& action) {
      if (!isWayOut(action)) return;
      Taken taken{keymap.device, keycode, index, {}};
      std::memcpy(taken.bytes, &action, sizeof taken.bytes);
      std::erase_if(taken_, [&](const Taken& t) {  // of a keymap that this one replaced
        return t.device == taken.device && t.keycode == keycode && t.index == index;
      });
      taken_.push_back(taken);
      action = {};
      action.noaction.type = NO_ACTION;
      isChanged = true;
    });
    if (isChanged) changed.push_back(std::move(keymap));
  }
  if (!changed.empty()) {
    remember();  // before the first keymap changes: there is no moment at which dying would lose an action
    for (const Keymap& keymap : changed) store(keymap);
  }
  connection_->flush();
  return isNews;
}

void ServerHotkeys::restore(Asked<&xcb_get_property_reply> left) {
  if (!features_.xkb) return;
  recall(std::move(left));
  if (taken_.empty()) return;
  KeyDevices concerned;
  for (const Taken& taken : taken_) concerned.push_back(static_cast<std::uint16_t>(taken.device));
  std::sort(concerned.begin(), concerned.end());
  concerned.erase(std::unique(concerned.begin(), concerned.end()), concerned.end());
  for (Keymap& keymap : answers(ask(concerned))) {
    bool isChanged = false;
    keymap.forEach([&](std::uint32_t keycode, std::uint32_t index, xcb_xkb_action_t& action) {
      const auto taken = std::find_if(taken_.begin(), taken_.end(), [&](const Taken& t) {
        return t.device == keymap.device && t.keycode == keycode && t.index == index;
      });
      if (taken == taken_.end() || action.type != NO_ACTION) return;
      std::memcpy(&action, taken->bytes, sizeof taken->bytes);
      isChanged = true;
    });
    if (isChanged) store(keymap);
  }
  taken_.clear();
  xcb_delete_property(*connection_, connection_->root(), property_);
  connection_->sync();
}

void ServerHotkeys::remember() {
  static_assert(sizeof(Taken) == 20);
  xcb_change_property(*connection_, XCB_PROP_MODE_REPLACE, connection_->root(), property_, XCB_ATOM_CARDINAL, 32,
                      static_cast<std::uint32_t>(taken_.size() * sizeof(Taken) / 4), taken_.data());
}

void ServerHotkeys::recall(Asked<&xcb_get_property_reply> left) {
  const auto words = Connection::items(std::move(left));
  if (words.empty() || words.size() * 4 % sizeof(Taken) != 0) return;
  taken_.resize(words.size() * 4 / sizeof(Taken));
  std::memcpy(taken_.data(), words.data(), words.size() * 4);
}

bool ServerHotkeys::concerns(const xcb_generic_event_t& event) const {
  const std::uint8_t type = event.response_type & 0x7f;
  if (features_.xkb && type == features_.xkbEvent) {
    return event.pad0 == XCB_XKB_NEW_KEYBOARD_NOTIFY || event.pad0 == XCB_XKB_MAP_NOTIFY;
  }
  return isHierarchyChange(event, features_);
}

}  // namespace dormel::x11
