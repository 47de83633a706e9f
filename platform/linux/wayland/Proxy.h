// Owners of a compositor's objects: each is destroyed with its owner, by the request that its protocol has for that.
// The connection outlives them.
#pragma once

#include <memory>

struct wl_buffer;
struct wl_callback;
struct wl_compositor;
struct wl_keyboard;
struct wl_output;
struct wl_pointer;
struct wl_region;
struct wl_seat;
struct wl_shm;
struct wl_shm_pool;
struct wl_subcompositor;
struct wl_subsurface;
struct wl_surface;
struct wp_fractional_scale_manager_v1;
struct wp_fractional_scale_v1;
struct wp_viewport;
struct wp_viewporter;
struct ext_session_lock_manager_v1;
struct ext_session_lock_surface_v1;
struct ext_session_lock_v1;
struct zwlr_layer_shell_v1;
struct zwlr_layer_surface_v1;
struct zwp_keyboard_shortcuts_inhibit_manager_v1;
struct zwp_keyboard_shortcuts_inhibitor_v1;
struct zwp_locked_pointer_v1;
struct zwp_pointer_constraints_v1;
struct zxdg_output_manager_v1;
struct zxdg_output_v1;

namespace dormel::wayland {

struct Destroy {
  void operator()(wl_buffer* object) const;
  void operator()(wl_callback* object) const;
  void operator()(wl_compositor* object) const;
  void operator()(wl_keyboard* object) const;
  void operator()(wl_output* object) const;
  void operator()(wl_pointer* object) const;
  void operator()(wl_region* object) const;
  void operator()(wl_seat* object) const;
  void operator()(wl_shm* object) const;
  void operator()(wl_shm_pool* object) const;
  void operator()(wl_subcompositor* object) const;
  void operator()(wl_subsurface* object) const;
  void operator()(wl_surface* object) const;
  void operator()(wp_fractional_scale_manager_v1* object) const;
  void operator()(wp_fractional_scale_v1* object) const;
  void operator()(wp_viewport* object) const;
  void operator()(wp_viewporter* object) const;
  void operator()(ext_session_lock_manager_v1* object) const;
  void operator()(ext_session_lock_surface_v1* object) const;
  void operator()(zwlr_layer_shell_v1* object) const;
  void operator()(zwlr_layer_surface_v1* object) const;
  void operator()(zwp_keyboard_shortcuts_inhibit_manager_v1* object) const;
  void operator()(zwp_keyboard_shortcuts_inhibitor_v1* object) const;
  void operator()(zwp_locked_pointer_v1* object) const;
  void operator()(zwp_pointer_constraints_v1* object) const;
  void operator()(zxdg_output_manager_v1* object) const;
  void operator()(zxdg_output_v1* object) const;
};

template <typename Object>
using Owned = std::unique_ptr<Object, Destroy>;

}  // namespace dormel::wayland
