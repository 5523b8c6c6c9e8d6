#include "desktop/linux/x11/WindowManagerTurn.h"

#include <utility>

namespace linux_desktop {

WindowManagerTurn::WindowManagerTurn(XEvents& events, const ClientWindows& clients,
                                     std::function<void()> come)
    : server_(events.server()),
      clients_(clients),
      window_(xcb_generate_id(server_.get())),
      come_(std::move(come)) {
  // IceWM answers only for a window that it could manage: one with pixels.
  xcb_create_window(server_.get(), XCB_COPY_FROM_PARENT, window_, server_.root(), -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  answer_ = events.watch(
      window_, XCB_EVENT_MASK_PROPERTY_CHANGE, [this](const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.atom != clients_.atoms()[ClientAtom::FrameExtents]) return;
        // What is done about it may end this.
        if (const auto then = std::exchange(come_, nullptr)) then();
      });
  ask();
}

WindowManagerTurn::~WindowManagerTurn() {
  answer_.reset();
  xcb_destroy_window(server_.get(), window_);
}

void WindowManagerTurn::ask() const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window_;
  event.type = clients_.atoms()[ClientAtom::RequestFrameExtents];
  xcb_send_event(server_.get(), 0, server_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
}

}  // namespace linux_desktop
