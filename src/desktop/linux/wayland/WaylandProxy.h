#pragma once

#include <keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h>
#include <viewporter-client-protocol.h>
#include <wayland-client.h>
#include <wlr-foreign-toplevel-management-unstable-v1-client-protocol.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#include <xdg-activation-v1-client-protocol.h>
#include <xdg-output-unstable-v1-client-protocol.h>

#include <memory>

namespace linux_desktop {

/// Lets go of an object of the protocol. Safe also once the connection is lost.
struct LetGo {
  // clang-format off
  void operator()(wl_buffer* object) const { wl_buffer_destroy(object); }
  void operator()(wl_callback* object) const { wl_callback_destroy(object); }
  void operator()(wl_compositor* object) const { wl_compositor_destroy(object); }
  void operator()(wl_region* object) const { wl_region_destroy(object); }
  void operator()(wl_registry* object) const { wl_registry_destroy(object); }
  void operator()(wl_shm* object) const { wl_shm_destroy(object); }
  void operator()(wl_shm_pool* object) const { wl_shm_pool_destroy(object); }
  void operator()(wl_surface* object) const { wl_surface_destroy(object); }
  void operator()(wp_viewport* object) const { wp_viewport_destroy(object); }
  void operator()(wp_viewporter* object) const { wp_viewporter_destroy(object); }
  void operator()(zwlr_layer_surface_v1* object) const { zwlr_layer_surface_v1_destroy(object); }
  void operator()(zxdg_output_manager_v1* object) const { zxdg_output_manager_v1_destroy(object); }
  void operator()(zxdg_output_v1* object) const { zxdg_output_v1_destroy(object); }
  void operator()(zwlr_foreign_toplevel_handle_v1* object) const { zwlr_foreign_toplevel_handle_v1_destroy(object); }
  void operator()(zwlr_foreign_toplevel_manager_v1* object) const { zwlr_foreign_toplevel_manager_v1_destroy(object); }
  void operator()(zwp_keyboard_shortcuts_inhibit_manager_v1* object) const { zwp_keyboard_shortcuts_inhibit_manager_v1_destroy(object); }
  void operator()(zwp_keyboard_shortcuts_inhibitor_v1* object) const { zwp_keyboard_shortcuts_inhibitor_v1_destroy(object); }
  // clang-format on
  void operator()(wl_output* object) const {
    if (wl_output_get_version(object) >= WL_OUTPUT_RELEASE_SINCE_VERSION) {
      wl_output_release(object);
    } else {
      wl_output_destroy(object);
    }
  }
  void operator()(wl_keyboard* object) const {
    if (wl_keyboard_get_version(object) >= WL_KEYBOARD_RELEASE_SINCE_VERSION) {
      wl_keyboard_release(object);
    } else {
      wl_keyboard_destroy(object);
    }
  }
  void operator()(wl_pointer* object) const {
    if (wl_pointer_get_version(object) >= WL_POINTER_RELEASE_SINCE_VERSION) {
      wl_pointer_release(object);
    } else {
      wl_pointer_destroy(object);
    }
  }
  void operator()(wl_touch* object) const {
    if (wl_touch_get_version(object) >= WL_TOUCH_RELEASE_SINCE_VERSION) {
      wl_touch_release(object);
    } else {
      wl_touch_destroy(object);
    }
  }
  void operator()(wl_seat* object) const {
    if (wl_seat_get_version(object) >= WL_SEAT_RELEASE_SINCE_VERSION) {
      wl_seat_release(object);
    } else {
      wl_seat_destroy(object);
    }
  }
  void operator()(zwlr_layer_shell_v1* object) const {
    if (zwlr_layer_shell_v1_get_version(object) >= ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION) {
      zwlr_layer_shell_v1_destroy(object);
    } else {
      wl_proxy_destroy(reinterpret_cast<wl_proxy*>(object));
    }
  }
};

/// Owns an object of the protocol. What it was made from may go before it, the connection may not.
template <class Object>
using WaylandProxy = std::unique_ptr<Object, LetGo>;

}  // namespace linux_desktop
