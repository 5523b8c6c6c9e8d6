#include "desktop/linux/x11/HideRequests.h"

#include <algorithm>
#include <iterator>

namespace linux_desktop {
namespace {

/// As a task bar: window managers do what it asks for without doubting.
constexpr std::uint32_t kFromPager = 2;
constexpr std::uint32_t kIconicState = 3;
enum StateChange : std::uint32_t { kRemove = 0, kAdd = 1 };

}  // namespace

void HideRequests::message(xcb_window_t window, ClientAtom type,
                           std::array<std::uint32_t, 5> data) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = clients_.atoms()[type];
  std::ranges::copy(data, std::begin(event.data.data32));
  xcb_send_event(clients_.server().get(), 0, clients_.server().root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
}

void HideRequests::minimise(xcb_window_t window) {
  // Some take windows of other workspaces for minimised already and pass over the first.
  message(window, ClientAtom::ChangeState, {kIconicState});
  message(window, ClientAtom::State,
          {kAdd, clients_.atoms()[ClientAtom::StateHidden], 0, kFromPager});
}

void HideRequests::restore(xcb_window_t window) {
  message(window, ClientAtom::State,
          {kRemove, clients_.atoms()[ClientAtom::StateHidden], 0, kFromPager});
}

void HideRequests::map(xcb_window_t window) {
  xcb_map_window(clients_.server().get(), window);
}

void HideRequests::activate(xcb_window_t window, xcb_timestamp_t time) {
  message(window, ClientAtom::ActiveWindow, {kFromPager, time});
}

void HideRequests::focus(xcb_window_t window, xcb_timestamp_t time) {
  xcb_set_input_focus(clients_.server().get(), XCB_INPUT_FOCUS_POINTER_ROOT, window, time);
}

void HideRequests::moveToDesktop(xcb_window_t window, std::uint32_t desktop) {
  message(window, ClientAtom::Desktop, {desktop, kFromPager});
}

void HideRequests::restack(xcb_window_t window, xcb_window_t sibling) {
  const std::uint32_t mode = sibling == XCB_NONE ? XCB_STACK_MODE_BELOW : XCB_STACK_MODE_ABOVE;
  message(window, ClientAtom::RestackWindow, {kFromPager, sibling, mode});
}

void HideRequests::mark(xcb_window_t window, HiddenMark mark) {
  const auto value = static_cast<std::uint32_t>(mark);
  xcb_change_property(clients_.server().get(), XCB_PROP_MODE_REPLACE, window,
                      clients_.atoms()[ClientAtom::HiddenMark], XCB_ATOM_CARDINAL, 32, 1, &value);
}

void HideRequests::unmark(xcb_window_t window) {
  xcb_delete_property(clients_.server().get(), window, clients_.atoms()[ClientAtom::HiddenMark]);
}

void HideRequests::remember(std::span<const xcb_window_t> bottomToTop, xcb_window_t active) {
  remember(ClientAtom::HiddenOrder, bottomToTop);
  remember(ClientAtom::HiddenActive, std::span(&active, active == XCB_NONE ? 0 : 1));
}

void HideRequests::remember(ClientAtom name, std::span<const xcb_window_t> windows) {
  xcb_connection_t* server = clients_.server().get();
  const xcb_window_t root = clients_.server().root();
  if (windows.empty()) {
    xcb_delete_property(server, root, clients_.atoms()[name]);
    return;
  }
  xcb_change_property(server, XCB_PROP_MODE_REPLACE, root, clients_.atoms()[name], XCB_ATOM_WINDOW,
                      32, static_cast<std::uint32_t>(windows.size()), windows.data());
}

void HideRequests::send() {
  xcb_flush(clients_.server().get());
}

}  // namespace linux_desktop
