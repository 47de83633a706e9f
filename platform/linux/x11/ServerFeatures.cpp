#include "platform/linux/x11/ServerFeatures.h"

#include <sys/socket.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/screensaver.h>
#include <xcb/shape.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <array>
#include <string_view>
#include <utility>

#include "platform/linux/x11/Reply.h"
#include "platform/linux/x11/Xkb.h"

namespace dormel::x11 {
namespace {

const xcb_query_extension_reply_t* present(xcb_connection_t* xcb, xcb_extension_t& extension) {
  const auto* data = xcb_get_extension_data(xcb, &extension);
  return data != nullptr && data->present != 0 ? data : nullptr;
}

bool atLeast(std::uint32_t major, std::uint32_t minor, std::uint32_t wantedMajor, std::uint32_t wantedMinor) {
  return major > wantedMajor || (major == wantedMajor && minor >= wantedMinor);
}

bool hasXInput22(xcb_connection_t* xcb, xcb_input_xi_query_version_cookie_t cookie) {
  const auto reply = owned(xcb_input_xi_query_version_reply(xcb, cookie, nullptr));
  return reply && atLeast(reply->major_version, reply->minor_version, 2, 2);
}

void readXkb(ServerFeatures& features, xcb_connection_t* xcb, const xcb_query_extension_reply_t& xkb,
             xcb_xkb_use_extension_cookie_t cookie) {
  const auto reply = owned(xcb_xkb_use_extension_reply(xcb, cookie, nullptr));
  features.xkb = reply && reply->supported != 0;
  features.xkbEvent = xkb.first_event;
}

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

  ServerFeatures features;
  const auto* randr = present(xcb, xcb_randr_id);
  const auto* input = present(xcb, xcb_input_id);
  const auto* xfixes = present(xcb, xcb_xfixes_id);
  const auto* render = present(xcb, xcb_render_id);
  const auto* xkb = present(xcb, xcb_xkb_id);
  if (const auto* shape = present(xcb, xcb_shape_id)) {
    features.shape = true;
    features.shapeEvent = shape->first_event;
  }
  features.screenSaver = present(xcb, xcb_screensaver_id) != nullptr;

  // All questions first, then all answers: one round trip.
  xcb_randr_query_version_cookie_t randrCookie{};
  xcb_input_xi_query_version_cookie_t inputCookie{};
  xcb_xfixes_query_version_cookie_t xfixesCookie{};
  xcb_render_query_version_cookie_t renderCookie{};
  xcb_xkb_use_extension_cookie_t xkbCookie{};
  const auto* shm = isOnThisMachine(xcb) ? present(xcb, xcb_shm_id) : nullptr;
  Asked<&xcb_shm_query_version_reply> askedShm;
  if (shm != nullptr) askedShm = {xcb, xcb_shm_query_version(xcb)};
  Outputs outputs;
  if (randr != nullptr) {
    randrCookie = xcb_randr_query_version(xcb, 1, 5);
    outputs = {xcb, xcb_randr_get_screen_resources_current(xcb, connection.root())};  // an error on an old server
  }
  if (input != nullptr) inputCookie = xcb_input_xi_query_version(xcb, 2, 2);
  if (xfixes != nullptr) xfixesCookie = xcb_xfixes_query_version(xcb, 2, 0);
  if (render != nullptr) renderCookie = xcb_render_query_version(xcb, 0, 11);
  if (xkb != nullptr) xkbCookie = xcb_xkb_use_extension(xcb, 1, 0);

  if (const auto reply = owned(xcb_query_extension_reply(xcb, bridgeCookie, nullptr))) {
    features.xwayland = reply->present != 0;
  }
  if (randr != nullptr) {
    const auto reply = owned(xcb_randr_query_version_reply(xcb, randrCookie, nullptr));
    if (reply && reply->major_version == 1 && reply->minor_version >= 2) {
      features.randr = static_cast<int>(reply->minor_version);
      features.randrEvent = randr->first_event;
    }
  }
  if (input != nullptr) {
    features.xinput22 = hasXInput22(xcb, inputCookie);
    features.xinputOpcode = input->major_opcode;
  }
  if (xfixes != nullptr) {
    features.xfixes = owned(xcb_xfixes_query_version_reply(xcb, xfixesCookie, nullptr)) != nullptr;
    features.xfixesEvent = xfixes->first_event;
  }
  if (render != nullptr) {
    const auto reply = owned(xcb_render_query_version_reply(xcb, renderCookie, nullptr));
    features.render = reply && atLeast(reply->major_version, reply->minor_version, 0, 10);
  }
  if (xkb != nullptr) readXkb(features, xcb, *xkb, xkbCookie);
  if (shm != nullptr) {
    const auto reply = askedShm.take();
    features.sharedMemory = reply && atLeast(reply->major_version, reply->minor_version, 1, 2);
    features.sharedMemoryEvent = shm->first_event;
  }
  if (!features.xwayland && features.randr >= 3) features.xwayland = hasBridgedOutput(xcb, std::move(outputs));
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
