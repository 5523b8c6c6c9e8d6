#include "desktop/linux/wallpaper/PcManFmMonitors.h"

#include <xcb/randr.h>

namespace linux_desktop {

std::vector<QString> outputsInUse(XServer& server) {
  xcb_connection_t* connection = server.get();
  const auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
  if (extension == nullptr || extension->present == 0) return {};
  const XReply<xcb_randr_get_screen_resources_current_reply_t> resources(
      xcb_randr_get_screen_resources_current_reply(
          connection, xcb_randr_get_screen_resources_current(connection, server.root()), nullptr));
  if (!resources) return {};
  const auto* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
  const int count = xcb_randr_get_screen_resources_current_outputs_length(resources.get());
  std::vector<xcb_randr_get_output_info_cookie_t> cookies;
  cookies.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    cookies.push_back(
        xcb_randr_get_output_info(connection, outputs[i], resources->config_timestamp));
  }
  std::vector<QString> names;
  for (const auto& cookie : cookies) {
    const XReply<xcb_randr_get_output_info_reply_t> info(
        xcb_randr_get_output_info_reply(connection, cookie, nullptr));
    if (!info || info->crtc == XCB_NONE) continue;
    const auto* name = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
    names.push_back(QString::fromUtf8(name, info->name_len));
  }
  return names;
}

}  // namespace linux_desktop
