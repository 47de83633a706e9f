#include "platform/linux/x11/ServerFeatures.h"

#include <sys/socket.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/screensaver.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <string_view>
#include <tuple>
#include <utility>

#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {
namespace {

const xcb_query_extension_reply_t* present(xcb_connection_t* xcb, xcb_extension_t& extension) {
  const auto* data = xcb_get_extension_data(xcb, &extension);
  return data != nullptr && data->present != 0 ? data : nullptr;
}

/// An extension of the server's, and the answer to what was asked about its version; nothing where there is none.
template <auto FETCH>
struct Extension {
  template <typename Ask, typename... Wanted>
  Extension(xcb_connection_t* xcb, xcb_extension_t& id, Ask ask, Wanted... wanted) : data(present(xcb, id)) {
    if (data != nullptr) asked = {xcb, ask(xcb, static_cast<std::uint16_t>(wanted)...)};
  }
  [[nodiscard]] bool isAtLeast(std::uint32_t major, std::uint32_t minor) {
    const auto reply = asked.take();
    return reply && std::tuple<std::uint32_t, std::uint32_t>(reply->major_version, reply->minor_version) >=
                        std::tuple(major, minor);
  }

  const xcb_query_extension_reply_t* data;
  Asked<FETCH> asked;
};

/// A server elsewhere is given no descriptors: the library would end the connection over it.
bool isOnThisMachine(xcb_connection_t* xcb) {
  int domain = 0;
  socklen_t length = sizeof domain;
  return ::getsockopt(xcb_get_file_descriptor(xcb), SOL_SOCKET, SO_DOMAIN, &domain, &length) == 0 && domain == AF_UNIX;
}

using Outputs = Asked<&xcb_randr_get_screen_resources_current_reply>;

/// The outputs of a Wayland compositor's X bridge are named after it, also where it has no extension of its own.
bool hasBridgedOutput(xcb_connection_t* xcb, Outputs asked) {
  const auto resources = asked.take();
  if (!resources || xcb_randr_get_screen_resources_current_outputs_length(resources.get()) == 0) return false;
  const auto output = xcb_randr_get_screen_resources_current_outputs(resources.get())[0];
  const auto info = owned(xcb_randr_get_output_info_reply(
      xcb, xcb_randr_get_output_info(xcb, output, resources->config_timestamp), nullptr));
  if (!info) return false;
  const std::string_view name(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                              static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get())));
  return name.starts_with("XWAYLAND");
}

}  // namespace

ServerFeatures ServerFeatures::query(Connection& connection) {
  xcb_connection_t* xcb = connection;
  for (xcb_extension_t* extension : {&xcb_randr_id, &xcb_input_id, &xcb_xfixes_id, &xcb_render_id, &xcb_shape_id,
                                     &xcb_screensaver_id, &xcb_shm_id, &xcb_xkb_id}) {
    xcb_prefetch_extension_data(xcb, extension);
  }
  constexpr std::string_view bridge = "XWAYLAND";
  const auto bridgeCookie = xcb_query_extension(xcb, bridge.size(), bridge.data());

  // All questions first, then all answers: one round trip.
  Extension<&xcb_randr_query_version_reply> randr(xcb, xcb_randr_id, xcb_randr_query_version, 1, 5);
  Extension<&xcb_input_xi_query_version_reply> input(xcb, xcb_input_id, xcb_input_xi_query_version, 2, 2);
  Extension<&xcb_xfixes_query_version_reply> xfixes(xcb, xcb_xfixes_id, xcb_xfixes_query_version, 2, 0);
  Extension<&xcb_render_query_version_reply> render(xcb, xcb_render_id, xcb_render_query_version, 0, 11);
  Extension<&xcb_shm_query_version_reply> shm(xcb, xcb_shm_id, xcb_shm_query_version);
  Extension<&xcb_xkb_use_extension_reply> xkb(xcb, xcb_xkb_id, xcb_xkb_use_extension, 1, 0);
  Outputs outputs;
  if (randr.data != nullptr) outputs = {xcb, xcb_randr_get_screen_resources_current(xcb, connection.root())};

  ServerFeatures features;
  features.screenSaver = present(xcb, xcb_screensaver_id) != nullptr;
  const auto* const shape = present(xcb, xcb_shape_id);
  features.shape = shape != nullptr;
  features.randr = randr.isAtLeast(1, 5);
  features.xinput22 = input.isAtLeast(2, 2);
  features.xfixes = xfixes.isAtLeast(1, 0);
  features.render = render.isAtLeast(0, 10);
  features.sharedMemory = shm.isAtLeast(1, 2) && isOnThisMachine(xcb);
  const auto keyboard = xkb.asked.take();
  features.xkb = keyboard && keyboard->supported != 0;

  const auto firstEvent = [](const xcb_query_extension_reply_t* data) {
    return data == nullptr ? std::uint8_t{0} : data->first_event;
  };
  features.randrEvent = firstEvent(randr.data);
  features.shapeEvent = firstEvent(shape);
  features.sharedMemoryEvent = firstEvent(shm.data);
  features.xfixesEvent = firstEvent(xfixes.data);
  features.xkbEvent = firstEvent(xkb.data);
  features.xinputOpcode = input.data == nullptr ? std::uint8_t{0} : input.data->major_opcode;

  const auto reply = owned(xcb_query_extension_reply(xcb, bridgeCookie, nullptr));
  features.xwayland = (reply && reply->present != 0) || hasBridgedOutput(xcb, std::move(outputs));
  return features;
}

void ServerFeatures::announceInput(Connection& connection) const {
  xcb_connection_t* xcb = connection;
  for (xcb_extension_t* extension : {&xcb_input_id, &xcb_xkb_id}) xcb_prefetch_extension_data(xcb, extension);
  // Nobody waits for the answers: they are known.
  if (xinput22) xcb_discard_reply(xcb, xcb_input_xi_query_version(xcb, 2, 2).sequence);
  if (xkb) xcb_discard_reply(xcb, xcb_xkb_use_extension(xcb, 1, 0).sequence);
}

}  // namespace dormel::x11
