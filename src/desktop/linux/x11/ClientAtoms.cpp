#include "desktop/linux/x11/ClientAtoms.h"

#include <string_view>

namespace linux_desktop {
namespace {

/// In the order of the enumeration.
constexpr std::array<std::string_view, static_cast<std::size_t>(ClientAtom::Count)> kNames{
    "_NET_SUPPORTED",
    "_NET_SUPPORTING_WM_CHECK",
    "_NET_WM_NAME",
    "_NET_CLIENT_LIST",
    "_NET_CLIENT_LIST_STACKING",
    "_NET_ACTIVE_WINDOW",
    "_NET_CURRENT_DESKTOP",
    "_NET_RESTACK_WINDOW",
    "_NET_REQUEST_FRAME_EXTENTS",
    "_NET_FRAME_EXTENTS",
    "_NET_WM_ACTION_MINIMIZE",
    "WM_CHANGE_STATE",
    "_NET_WM_STATE",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_DESKTOP",
    "_NET_WM_PID",
    "WM_CLIENT_LEADER",
    "WM_CLIENT_MACHINE",
    "_GTK_APPLICATION_ID",
    "_CALMDECK_HIDDEN",
    "_CALMDECK_ORDER",
    "_CALMDECK_ACTIVE",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_NET_WM_WINDOW_TYPE_NOTIFICATION",
    "_NET_WM_WINDOW_TYPE_SPLASH",
    "_NET_WM_WINDOW_TYPE_NORMAL",
    "_NET_WM_WINDOW_TYPE_DIALOG",
};

}  // namespace

ClientAtoms::ClientAtoms(XServer& server) {
  std::array<xcb_intern_atom_cookie_t, kNames.size()> cookies{};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    cookies[i] = xcb_intern_atom(server.get(), 0, static_cast<std::uint16_t>(kNames[i].size()),
                                 kNames[i].data());
  }
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const XReply<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(server.get(), cookies[i], nullptr));
    if (reply) atoms_[i] = reply->atom;
  }
}

}  // namespace linux_desktop
