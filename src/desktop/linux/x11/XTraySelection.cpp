#include "desktop/linux/x11/XTraySelection.h"

#include <QGuiApplication>
#include <string>
#include <utility>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {
namespace {

struct Screen {
  int number = 0;
  xcb_window_t root = XCB_NONE;
};

Screen defaultScreen(xcb_connection_t* connection) {
  Screen screen;
  char* host = nullptr;
  int display = 0;
  if (xcb_parse_display(nullptr, &host, &display, &screen.number) != 0) std::free(host);
  xcb_screen_iterator_t all = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (int i = 0; i < screen.number && all.rem > 1; ++i) xcb_screen_next(&all);
  screen.root = all.data->root;
  return screen;
}

xcb_atom_t intern(xcb_connection_t* connection, const std::string& name) {
  const auto asked =
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const XReply<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(connection, asked, nullptr));
  return atom ? atom->atom : XCB_NONE;
}

xcb_connection_t* connectionOfQt() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

}  // namespace

XTraySelection::XTraySelection() : connection_(connectionOfQt()) {
  if (connection_ == nullptr) return;
  const Screen screen = defaultScreen(connection_);
  selection_ = intern(connection_, "_NET_SYSTEM_TRAY_S" + std::to_string(screen.number));
  xembed_ = intern(connection_, "_XEMBED");
  xembedInfo_ = intern(connection_, "_XEMBED_INFO");
  askForChanges(screen.root);
  const XReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
      connection_, xcb_get_selection_owner(connection_, selection_), nullptr));
  if (owner) owner_ = owner->owner;
}

XTraySelection::~XTraySelection() {
  if (selectionEvent_ != 0) qGuiApp->removeNativeEventFilter(this);
}

void XTraySelection::askForChanges(xcb_window_t root) {
  // Qt has told the server which version of the extension this connection speaks.
  const auto* extension = xcb_get_extension_data(connection_, &xcb_xfixes_id);
  if (extension == nullptr || extension->present == 0) return;
  selectionEvent_ = static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
  xcb_xfixes_select_selection_input(connection_, root, selection_,
                                    XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                        XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
  xcb_flush(connection_);
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
  const auto info =
      xcb_get_property(connection_, 0, window, xembedInfo_, XCB_GET_PROPERTY_TYPE_ANY, 0, 1);
  const auto tree = xcb_query_tree(connection_, window);
  const XReply<xcb_get_property_reply_t> embedding(
      xcb_get_property_reply(connection_, info, nullptr));
  const XReply<xcb_query_tree_reply_t> place(xcb_query_tree_reply(connection_, tree, nullptr));
  return embedding && embedding->type != XCB_NONE && place && place->parent != place->root;
}

void XTraySelection::becomeDocked() {
  if (std::exchange(docked_, true)) return;
  reportLater(observer().docked);
}

}  // namespace linux_desktop
