#include "platform/linux/x11/KeyDevices.h"

#include <xcb/xinput.h>

#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {
namespace {

bool hasKeys(const xcb_input_xi_device_info_t* device) {
  for (auto it = xcb_input_xi_device_info_classes_iterator(device); it.rem > 0; xcb_input_device_class_next(&it)) {
    if (it.data->type == XCB_INPUT_DEVICE_CLASS_TYPE_KEY) return true;
  }
  return false;
}

}  // namespace

KeyDevices keyDevices(Connection& connection, const ServerFeatures& features) {
  KeyDevices devices;
  if (!features.xinput22) return {XCB_XKB_ID_USE_CORE_KBD};
  const auto reply = owned(xcb_input_xi_query_device_reply(
      connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
  if (!reply) return devices;
  // Each keyboard carries out the actions of its own keymap, and the master those of a copy. Pointers may have keys.
  for (auto it = xcb_input_xi_query_device_infos_iterator(reply.get()); it.rem > 0;
       xcb_input_xi_device_info_next(&it)) {
    if (hasKeys(it.data)) devices.push_back(it.data->deviceid);
  }
  return devices;
}

void selectHierarchy(Connection& connection, const ServerFeatures& features) {
  if (!features.xinput22) return;
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t bits;
  } mask{{XCB_INPUT_DEVICE_ALL, 1}, XCB_INPUT_XI_EVENT_MASK_HIERARCHY};
  xcb_input_xi_select_events(connection, connection.root(), 1, &mask.head);
}

bool isHierarchyChange(const xcb_generic_event_t& event, const ServerFeatures& features) {
  if ((event.response_type & 0x7f) != XCB_GE_GENERIC) return false;
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  return generic.extension == features.xinputOpcode && generic.event_type == XCB_INPUT_HIERARCHY;
}

}  // namespace dormel::x11
