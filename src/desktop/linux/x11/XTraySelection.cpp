#include "desktop/linux/x11/XTraySelection.h"

#include <QGuiApplication>
#include <utility>

namespace linux_desktop {
XTraySelection::XTraySelection(XServer& server)
    : server_(server),
      connection_(XServer::connectionOfQt()),
      selection_(server.atomOfScreen("_NET_SYSTEM_TRAY_S")),
      xembed_(server.atom("_XEMBED")) {
  askForChanges();
  owner_ = server_.ownerOf(selection_);
}

XTraySelection::~XTraySelection() {
  if (selectionEvent_ != 0) qGuiApp->removeNativeEventFilter(this);
}

void XTraySelection::askForChanges() {
  // Qt has told the server which version of the extension this connection speaks.
  const auto* extension = xcb_get_extension_data(connection_, &xcb_xfixes_id);
  if (extension == nullptr || extension->present == 0) return;
  selectionEvent_ = static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
  const auto asked = xcb_xfixes_select_selection_input_checked(
      connection_, server_.root(), selection_,
      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
  // Who owns it now is asked over the other connection, and not before this has come.
  const XReply<xcb_generic_error_t> refused(xcb_request_check(connection_, asked));
  qGuiApp->installNativeEventFilter(this);
}

bool XTraySelection::nativeEventFilter(const QByteArray& /*eventType*/, void* message,
                                       qintptr* /*result*/) {
  const auto type = typeOf(*static_cast<const xcb_generic_event_t*>(message));
  if (type == selectionEvent_)
    handle(*static_cast<const xcb_xfixes_selection_notify_event_t*>(message));
  if (type == XCB_CLIENT_MESSAGE) handle(*static_cast<const xcb_client_message_event_t*>(message));
  if (type == XCB_MAP_NOTIFY) handle(*static_cast<const xcb_map_notify_event_t*>(message));
  return false;
}

// The tray may be in the middle of setting itself up, and Qt of the event.
void XTraySelection::reportLater(std::function<void()> what) {
  if (what) QMetaObject::invokeMethod(&context_, std::move(what), Qt::QueuedConnection);
}

void XTraySelection::handle(const xcb_xfixes_selection_notify_event_t& change) {
  if (change.selection != selection_ || change.owner == owner_) return;
  owner_ = change.owner;
  docked_ = false;
  reportLater(observer().changed);
}

void XTraySelection::handle(const xcb_client_message_event_t& message) {
  constexpr std::uint32_t kEmbeddedNotify = 0;  // no other window of this process is embedded
  if (message.type != xembed_ || message.format != 32) return;
  if (message.data.data32[1] == kEmbeddedNotify) becomeDocked();
}

// JWM 2.4 takes an icon in without a word.
void XTraySelection::handle(const xcb_map_notify_event_t& map) {
  if (!docked_ && isRunning() && map.event == map.window && isIcon(map.window)) becomeDocked();
}

/// Whether a window of ours is an icon of the old protocol and is in some tray.
bool XTraySelection::isIcon(xcb_window_t window) const {
  const xcb_window_t parent = server_.parentOf(window);
  return parent != XCB_NONE && parent != server_.root() &&
         !server_.numbers(window, "_XEMBED_INFO").empty();
}

void XTraySelection::becomeDocked() {
  if (std::exchange(docked_, true)) return;
  reportLater(observer().docked);
}

}  // namespace linux_desktop
