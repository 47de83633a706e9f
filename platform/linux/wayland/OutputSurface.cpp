#include "platform/linux/wayland/OutputSurface.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "platform/linux/wayland/Protocols.h"

namespace dormel::wayland {
namespace {

constexpr double FRACTIONS = 120;
constexpr const char* NAMESPACE = "dormel";
/// What a compositor says beyond that is no size.
constexpr std::uint32_t FAR = 1U << 24U;

Size sized(std::uint32_t width, std::uint32_t height) {
  return {static_cast<double>(std::min(width, FAR)), static_cast<double>(std::min(height, FAR))};
}

}  // namespace

OutputSurface::OutputSurface(Connection& connection, Shades& shades, std::shared_ptr<Output> output)
    : connection_(connection),
      shades_(shades),
      output_(std::move(output)),
      surface_(wl_compositor_create_surface(connection.globals().compositor.get())),
      viewport_(wp_viewporter_get_viewport(connection.globals().viewporter.get(), surface_.get())),
      scale_(output_->scale) {
  if (!connection.globals().fractionalScale) return;
  fraction_.reset(
      wp_fractional_scale_manager_v1_get_fractional_scale(connection.globals().fractionalScale.get(), surface_.get()));
  static constexpr wp_fractional_scale_v1_listener LISTENER{
      [](void* data, wp_fractional_scale_v1*, std::uint32_t scale) {
        auto& self = *static_cast<OutputSurface*>(data);
        const double told = std::clamp(scale / FRACTIONS, 0.25, 16.0);
        if (std::exchange(self.scale_, told) != told && self.onLayout_) self.onLayout_();
      }};
  wp_fractional_scale_v1_add_listener(fraction_.get(), &LISTENER, this);
}

OutputSurface::~OutputSurface() = default;

void OutputSurface::configured(const Size& size) {
  const bool isOther = size != size_;
  size_ = size;
  commit();
  if (isOther && onLayout_) onLayout_();
}

void OutputSurface::commit() {
  if (size_.width < 1 || size_.height < 1) return;
  const int width = static_cast<int>(size_.width);
  const int height = static_cast<int>(size_.height);
  if (std::exchange(shown_, black_) != black_) isLarger_ = !isLarger_;
  wl_surface_attach(surface_.get(), shades_.black(black_, isLarger_), 0, 0);
  wl_surface_damage_buffer(surface_.get(), 0, 0, INT32_MAX, INT32_MAX);
  wp_viewport_set_source(viewport_.get(), wl_fixed_from_int(1), wl_fixed_from_int(1), wl_fixed_from_int(1),
                         wl_fixed_from_int(1));
  wp_viewport_set_destination(viewport_.get(), width, height);
  if (black_ >= 1) {
    const Owned<wl_region> all(wl_compositor_create_region(connection_.globals().compositor.get()));
    wl_region_add(all.get(), 0, 0, width, height);
    wl_surface_set_opaque_region(surface_.get(), all.get());
  } else {
    wl_surface_set_opaque_region(surface_.get(), nullptr);
  }
  wl_surface_commit(surface_.get());
}

LayerShellSurface::LayerShellSurface(Connection& connection, Shades& shades, const std::shared_ptr<Output>& output,
                                     const Placement& placement, KeyboardUse use, Task onClosed)
    : OutputSurface(connection, shades, output),
      use_(use),
      onClosed_(std::move(onClosed)),
      role_(zwlr_layer_shell_v1_get_layer_surface(connection.globals().layerShell.get(), surface(),
                                                  output->handle.get(), ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, NAMESPACE)) {
  static constexpr zwlr_layer_surface_v1_listener LISTENER{
      [](void* data, zwlr_layer_surface_v1* role, std::uint32_t serial, std::uint32_t width, std::uint32_t height) {
        zwlr_layer_surface_v1_ack_configure(role, serial);
        static_cast<LayerShellSurface*>(data)->configured(sized(width, height));
      },
      [](void* data, zwlr_layer_surface_v1*) {
        const Task onClosed = static_cast<LayerShellSurface*>(data)->onClosed_;
        if (onClosed) onClosed();
      }};
  zwlr_layer_surface_v1_add_listener(role_.get(), &LISTENER, this);
  arrange(placement);
  setKeyboardUse(use);
  wl_surface_commit(surface());  // without a picture: the compositor answers with the size
}

void LayerShellSurface::arrange(const Placement& placement) {
  zwlr_layer_surface_v1* const role = role_.get();
  if (!placement.corner) {
    zwlr_layer_surface_v1_set_size(role, 0, 0);
    zwlr_layer_surface_v1_set_anchor(role, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
                                               ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT);
    zwlr_layer_surface_v1_set_exclusive_zone(role, -1);  // over bars and docks
    return;
  }
  const Placement::Corner& corner = *placement.corner;
  zwlr_layer_surface_v1_set_size(role, static_cast<std::uint32_t>(std::max(1.0, std::ceil(corner.size.width))),
                                 static_cast<std::uint32_t>(std::max(1.0, std::ceil(corner.size.height))));
  zwlr_layer_surface_v1_set_anchor(
      role, (corner.right ? ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT : ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT) |
                (corner.bottom ? ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM : ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP));
  zwlr_layer_surface_v1_set_margin(role, corner.bottom ? 0 : corner.vertical, corner.right ? corner.horizontal : 0,
                                   corner.bottom ? corner.vertical : 0, corner.right ? 0 : corner.horizontal);
}

void LayerShellSurface::place(const Placement& placement) {
  arrange(placement);
  wl_surface_commit(surface());
}

void LayerShellSurface::setKeyboardUse(KeyboardUse use) {
  use_ = use;
  zwlr_layer_surface_v1_set_keyboard_interactivity(
      role_.get(), use == KeyboardUse::exclusive ? ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE
                                                 : ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_NONE);
}

void LayerShellSurface::askForKeyboardAgain() {
  if (use_ != KeyboardUse::exclusive || size().width < 1) return;
  for (const KeyboardUse use : {KeyboardUse::none, KeyboardUse::exclusive}) {
    setKeyboardUse(use);
    wl_surface_commit(surface());
  }
}

SessionLockSurface::SessionLockSurface(Connection& connection, Shades& shades, std::shared_ptr<Output> output,
                                       ext_session_lock_v1* lock)
    : OutputSurface(connection, shades, std::move(output)),
      role_(ext_session_lock_v1_get_lock_surface(lock, surface(), this->output()->handle.get())) {
  static constexpr ext_session_lock_surface_v1_listener LISTENER{[](void* data, ext_session_lock_surface_v1* role,
                                                                    std::uint32_t serial, std::uint32_t width,
                                                                    std::uint32_t height) {
    ext_session_lock_surface_v1_ack_configure(role, serial);
    static_cast<SessionLockSurface*>(data)->configured(sized(width, height));
  }};
  ext_session_lock_surface_v1_add_listener(role_.get(), &LISTENER, this);
  setBlack(1);
}

}  // namespace dormel::wayland
