#include "platform/linux/wayland/Proxy.h"

#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {

void Destroy::operator()(wl_buffer* object) const { wl_buffer_destroy(object); }
void Destroy::operator()(wl_callback* object) const { wl_callback_destroy(object); }
void Destroy::operator()(wl_compositor* object) const { wl_compositor_destroy(object); }

void Destroy::operator()(wl_keyboard* object) const {
  if (wl_keyboard_get_version(object) >= WL_KEYBOARD_RELEASE_SINCE_VERSION) return wl_keyboard_release(object);
  wl_keyboard_destroy(object);
}

void Destroy::operator()(wl_output* object) const {
  if (wl_output_get_version(object) >= WL_OUTPUT_RELEASE_SINCE_VERSION) return wl_output_release(object);
  wl_output_destroy(object);
}

void Destroy::operator()(wl_pointer* object) const {
  if (wl_pointer_get_version(object) >= WL_POINTER_RELEASE_SINCE_VERSION) return wl_pointer_release(object);
  wl_pointer_destroy(object);
}

void Destroy::operator()(wl_region* object) const { wl_region_destroy(object); }

void Destroy::operator()(wl_seat* object) const {
  if (wl_seat_get_version(object) >= WL_SEAT_RELEASE_SINCE_VERSION) return wl_seat_release(object);
  wl_seat_destroy(object);
}

void Destroy::operator()(wl_shm* object) const { wl_shm_destroy(object); }
void Destroy::operator()(wl_shm_pool* object) const { wl_shm_pool_destroy(object); }
void Destroy::operator()(wl_subcompositor* object) const { wl_subcompositor_destroy(object); }
void Destroy::operator()(wl_subsurface* object) const { wl_subsurface_destroy(object); }
void Destroy::operator()(wl_surface* object) const { wl_surface_destroy(object); }
void Destroy::operator()(wp_fractional_scale_manager_v1* object) const {
  wp_fractional_scale_manager_v1_destroy(object);
}
void Destroy::operator()(wp_fractional_scale_v1* object) const { wp_fractional_scale_v1_destroy(object); }
void Destroy::operator()(wp_viewport* object) const { wp_viewport_destroy(object); }
void Destroy::operator()(wp_viewporter* object) const { wp_viewporter_destroy(object); }
void Destroy::operator()(ext_session_lock_manager_v1* object) const { ext_session_lock_manager_v1_destroy(object); }
void Destroy::operator()(ext_session_lock_surface_v1* object) const { ext_session_lock_surface_v1_destroy(object); }

void Destroy::operator()(zwlr_layer_shell_v1* object) const {
  if (zwlr_layer_shell_v1_get_version(object) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION) {
    return zwlr_layer_shell_v1_destroy(object);
  }
  wl_proxy_destroy(reinterpret_cast<wl_proxy*>(object));
}

void Destroy::operator()(zwlr_layer_surface_v1* object) const { zwlr_layer_surface_v1_destroy(object); }
void Destroy::operator()(zwp_keyboard_shortcuts_inhibit_manager_v1* object) const {
  zwp_keyboard_shortcuts_inhibit_manager_v1_destroy(object);
}
void Destroy::operator()(zwp_keyboard_shortcuts_inhibitor_v1* object) const {
  zwp_keyboard_shortcuts_inhibitor_v1_destroy(object);
}
void Destroy::operator()(zwp_locked_pointer_v1* object) const { zwp_locked_pointer_v1_destroy(object); }
void Destroy::operator()(zwp_pointer_constraints_v1* object) const { zwp_pointer_constraints_v1_destroy(object); }
void Destroy::operator()(zxdg_output_manager_v1* object) const { zxdg_output_manager_v1_destroy(object); }
void Destroy::operator()(zxdg_output_v1* object) const { zxdg_output_v1_destroy(object); }

}  // namespace dormel::wayland
