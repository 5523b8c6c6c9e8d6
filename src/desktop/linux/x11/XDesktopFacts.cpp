#include "desktop/linux/x11/XDesktopFacts.h"

#include <xcb/randr.h>

#include <algorithm>
#include <array>

namespace linux_desktop {
namespace {

bool coversAMonitor(const WindowStack::DesktopWindow& window,
                    const std::vector<Monitor>& monitors) {
  return std::ranges::any_of(
      monitors, [&](const Monitor& monitor) { return window.covers(monitor.pixels()); });
}

}  // namespace

XDesktopFacts::XDesktopFacts(XEvents& events, const XScreens& screens)
    : DesktopFacts([&screens] { return screens.monitors(); }),
      events_(events),
      screens_(screens),
      root_(std::make_shared<RootWallpaper>(events, screens)) {}

DesktopWindow XDesktopFacts::desktopWindow() {
  const WindowStack& stack = events_.stack();
  const auto lowest = std::ranges::find_if(stack.desktopWindows, [this](const auto& window) {
    return !window.ours && coversAMonitor(window, screens_.monitors());
  });
  if (lowest == stack.desktopWindows.end()) return {};
  XServer& server = events_.server();
  const auto values =
      server.read(std::array{XProperty{lowest->window, XCB_ATOM_WM_CLASS},
                             XProperty{lowest->window, server.atom("_NET_WM_PID")}});
  // ICCCM 4.1.2.5.
  const auto names = values[0].texts();
  return {lowest->window, names.size() < 2 ? QString() : QString::fromStdString(names[1]),
          values[1].number().value_or(0)};
}

std::optional<Workspaces> XDesktopFacts::workspaces() {
  const auto told = [&server = events_.server()](const char* property) {
    return static_cast<int>(server.number(server.root(), property).value_or(0));
  };
  return Workspaces{std::max(1, told("_NET_NUMBER_OF_DESKTOPS")), told("_NET_CURRENT_DESKTOP")};
}

std::vector<QString> XDesktopFacts::outputsInUse() {
  xcb_connection_t* connection = events_.server().get();
  const auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
  if (extension == nullptr || extension->present == 0) return {};
  const XReply<xcb_randr_get_screen_resources_current_reply_t> resources(
      xcb_randr_get_screen_resources_current_reply(
          connection, xcb_randr_get_screen_resources_current(connection, events_.server().root()),
          nullptr));
  if (!resources) return {};
  const auto* outputs = xcb_randr_get_screen_resources_current_outputs(resources.get());
  const int count = xcb_randr_get_screen_resources_current_outputs_length(resources.get());
  std::vector<QString> names;
  for (int i = 0; i < count; ++i) {
    const XReply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        connection, xcb_randr_get_output_info(connection, outputs[i], resources->config_timestamp),
        nullptr));
    if (!info || info->crtc == XCB_NONE) continue;
    const auto* name = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
    names.push_back(QString::fromUtf8(name, info->name_len));
  }
  return names;
}

std::shared_ptr<WallpaperAdapter> XDesktopFacts::bareDesktop() {
  return root_->isSeen() ? root_ : nullptr;
}

}  // namespace linux_desktop
