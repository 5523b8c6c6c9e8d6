#pragma once

#include <keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h>
#include <viewporter-client-protocol.h>
#include <wayland-client.h>
#include <wlr-foreign-toplevel-management-unstable-v1-client-protocol.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>
#include <xdg-output-unstable-v1-client-protocol.h>
#include <xdg-shell-client-protocol.h>

#include <cstdint>
#include <memory>

namespace linux_desktop {

/// Lets go of an object of the protocol. Safe also once the connection is lost.
struct LetGo {
  // clang-format off
  void operator()(wl_buffer* object) const { wl_buffer_destroy(object); }
  void operator()(wl_callback* object) const { wl_callback_destroy(object); }
  void operator()(wl_compositor* object) const { wl_compositor_destroy(object); }
  void operator()(wl_registry* object) const { wl_registry_destroy(object); }
  void operator()(wl_shm* object) const { wl_shm_destroy(object); }
  void operator()(wl_shm_pool* object) const { wl_shm_pool_destroy(object); }
  void operator()(wl_surface* object) const { wl_surface_destroy(object); }
  void operator()(wp_viewport* object) const { wp_viewport_destroy(object); }
  void operator()(wp_viewporter* object) const { wp_viewporter_destroy(object); }
  void operator()(xdg_popup* object) const { xdg_popup_destroy(object); }
  void operator()(xdg_positioner* object) const { xdg_positioner_destroy(object); }
  void operator()(xdg_surface* object) const { xdg_surface_destroy(object); }
  void operator()(xdg_wm_base* object) const { xdg_wm_base_destroy(object); }
  void operator()(zwlr_layer_surface_v1* object) const { zwlr_layer_surface_v1_destroy(object); }
  void operator()(zxdg_output_manager_v1* object) const { zxdg_output_manager_v1_destroy(object); }
  void operator()(zxdg_output_v1* object) const { zxdg_output_v1_destroy(object); }
  void operator()(zwlr_foreign_toplevel_handle_v1* object) const { zwlr_foreign_toplevel_handle_v1_destroy(object); }
  void operator()(zwlr_foreign_toplevel_manager_v1* object) const { zwlr_foreign_toplevel_manager_v1_destroy(object); }
  void operator()(zwp_keyboard_shortcuts_inhibit_manager_v1* object) const { zwp_keyboard_shortcuts_inhibit_manager_v1_destroy(object); }
  void operator()(zwp_keyboard_shortcuts_inhibitor_v1* object) const { zwp_keyboard_shortcuts_inhibitor_v1_destroy(object); }
  void operator()(wl_output* object) const { release<wl_output_release, WL_OUTPUT_RELEASE_SINCE_VERSION>(object); }
  void operator()(wl_keyboard* object) const { release<wl_keyboard_release, WL_KEYBOARD_RELEASE_SINCE_VERSION>(object); }
  void operator()(wl_pointer* object) const { release<wl_pointer_release, WL_POINTER_RELEASE_SINCE_VERSION>(object); }
  void operator()(wl_touch* object) const { release<wl_touch_release, WL_TOUCH_RELEASE_SINCE_VERSION>(object); }
  void operator()(wl_seat* object) const { release<wl_seat_release, WL_SEAT_RELEASE_SINCE_VERSION>(object); }
  void operator()(zwlr_layer_shell_v1* object) const { release<zwlr_layer_shell_v1_destroy, ZWLR_LAYER_SHELL_V1_DESTROY_SINCE_VERSION>(object); }
  // clang-format on

 private:
  /// What older versions of the protocol have no word for is only forgotten.
  template <auto tell, std::uint32_t since, class Object>
  static void release(Object* object) {
    auto* proxy = reinterpret_cast<wl_proxy*>(object);
    if (wl_proxy_get_version(proxy) >= since) {
      tell(object);
    } else {
      wl_proxy_destroy(proxy);
    }
  }
};

/// Owns an object of the protocol. What it was made from may go before it, the connection may not.
template <class Object>
using WaylandProxy = std::unique_ptr<Object, LetGo>;

}  // namespace linux_desktop
