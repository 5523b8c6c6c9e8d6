#include "desktop/linux/x11/XOwnWindows.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "desktop/linux/log/Log.h"
#include "desktop/linux/x11/XPanels.h"

namespace linux_desktop {
namespace {

/// Buttons 4 to 7 are the two wheels.
constexpr bool isWheel(std::uint32_t button) {
  return button >= 4 && button <= 7;
}

/// The server's time begins anew every 49 days.
constexpr bool isAfter(xcb_timestamp_t time, xcb_timestamp_t other) {
  return static_cast<std::int32_t>(time - other) > 0;
}

/// Presses anywhere on the desktop but on one window, as raw events of XInput: they come whoever
/// gets the press, without a grab. For as long as it lives; then the server sends nothing.
class XPressWatch final : public OwnWindows::PressWatch {
 public:
  /// Whether that pixel of the root window belongs to a panel.
  using IsOnPanel = std::function<bool(QPoint onRoot)>;

  /// `events` outlives this. Where the server lacks the extension nothing is reported, after one
  /// line on standard error.
  XPressWatch(XEvents& events, xcb_window_t window, IsOnPanel isOnPanel,
              OwnWindows::Pressed pressed);
  ~XPressWatch() override;
  XPressWatch(const XPressWatch&) = delete;
  XPressWatch& operator=(const XPressWatch&) = delete;

  void discardPending() override;

 private:
  void select(std::uint32_t mask);
  void handle(const xcb_generic_event_t& event);
  [[nodiscard]] std::optional<xcb_timestamp_t> timeOfPress(const xcb_generic_event_t& event) const;
  [[nodiscard]] std::optional<QPoint> pointer() const;

  XEvents& events_;
  xcb_window_t window_;
  IsOnPanel isOnPanel_;
  OwnWindows::Pressed pressed_;
  std::optional<std::uint8_t> extension_;
  std::unique_ptr<XEvents::Watch> watch_;
  /// What was pressed up to then was for somebody else.
  std::optional<xcb_timestamp_t> discarded_;
};

XPressWatch::XPressWatch(XEvents& events, xcb_window_t window, IsOnPanel isOnPanel,
                         OwnWindows::Pressed pressed)
    : events_(events),
      window_(window),
      isOnPanel_(std::move(isOnPanel)),
      pressed_(std::move(pressed)),
      extension_(events.server().inputExtension()) {
  if (!extension_) {
    qCWarning(lcX11, "no XInput 2.2: a click on the bare desktop may leave the panel open");
    return;
  }
  watch_ = events_.watchExtension(XCB_GE_GENERIC,
                                  [this](const xcb_generic_event_t& event) { handle(event); });
  select(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_BEGIN);
}

XPressWatch::~XPressWatch() {
  if (watch_) select(0);
}

void XPressWatch::select(std::uint32_t mask) {
  struct {
    xcb_input_event_mask_t head{XCB_INPUT_DEVICE_ALL_MASTER, 1};
    std::uint32_t mask;
  } const selection{.mask = mask};
  xcb_input_xi_select_events(events_.server().get(), events_.server().root(), 1, &selection.head);
  xcb_flush(events_.server().get());
}

void XPressWatch::handle(const xcb_generic_event_t& event) {
  const auto time = timeOfPress(event);
  if (!time || (discarded_ && !isAfter(*time, *discarded_))) return;
  // A raw press does not say where it was.
  const auto place = pointer();
  const auto own = events_.server().geometry(window_);
  if (place && !(own && own->contains(*place))) pressed_({*time, isOnPanel_(*place)});
}

std::optional<xcb_timestamp_t> XPressWatch::timeOfPress(const xcb_generic_event_t& event) const {
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (generic.extension != extension_) return std::nullopt;
  // Presses and touches are laid out alike.
  const auto& raw = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
  if (generic.event_type == XCB_INPUT_RAW_TOUCH_BEGIN) return raw.time;
  if (generic.event_type != XCB_INPUT_RAW_BUTTON_PRESS || isWheel(raw.detail)) return std::nullopt;
  return raw.time;
}

std::optional<QPoint> XPressWatch::pointer() const {
  XServer& server = events_.server();
  const XReply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
      server.get(), xcb_query_pointer(server.get(), server.root()), nullptr));
  if (!reply) return std::nullopt;
  return QPoint(reply->root_x, reply->root_y);
}

void XPressWatch::discardPending() {
  discarded_ = events_.server().time();
}

/// EWMH 1.5: source 2 is "the user's own wish", as a pager would pass it on.
constexpr std::uint32_t kUser = 2;
constexpr std::uint32_t kEveryWorkspace = 0xffffffff;

xcb_window_t idOf(const QWindow& window) {
  return static_cast<xcb_window_t>(window.winId());
}

}  // namespace

void XOwnWindows::keepOutOfTaskLists(QWindow& window) {
  // Qt adds its own states to these when it maps the window.
  server_.setNumbers(
      idOf(window), "_NET_WM_STATE", XCB_ATOM_ATOM,
      {server_.atom("_NET_WM_STATE_SKIP_TASKBAR"), server_.atom("_NET_WM_STATE_SKIP_PAGER")},
      XServer::connectionOfQt());
}

void XOwnWindows::markAsAskedFor(QWindow& window) {
  // Qt has written the time of the last event it saw, which may be none or long ago; where the
  // window manager knows the property, into a window of its own.
  xcb_flush(XServer::connectionOfQt());
  const xcb_timestamp_t now = server_.time();
  const xcb_window_t holder =
      server_.number(idOf(window), "_NET_WM_USER_TIME_WINDOW").value_or(idOf(window));
  server_.setNumbers(holder, "_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, {now},
                     XServer::connectionOfQt());
  xcb_flush(XServer::connectionOfQt());
}

bool XOwnWindows::isKept(QWindow& window) {
  // ICCCM 4.1.3.1: a window manager gives it to the windows that it manages; 0 is Withdrawn.
  return server_.number(idOf(window), "WM_STATE").value_or(0) != 0;
}

void XOwnWindows::activate(QWindow& window) {
  if (!server_.managerKnows("_NET_ACTIVE_WINDOW")) {
    window.requestActivate();
    return;
  }
  // Some window managers would take the user to its workspace, or do nothing.
  const auto workspace = server_.number(server_.root(), "_NET_CURRENT_DESKTOP");
  const auto own = server_.number(idOf(window), "_NET_WM_DESKTOP");
  if (workspace && own && own != workspace && own != kEveryWorkspace) {
    server_.askManager(idOf(window), "_NET_WM_DESKTOP", {*workspace, kUser},
                       XServer::connectionOfQt());
  }
  const xcb_timestamp_t now = server_.time();
  server_.askManager(idOf(window), "_NET_ACTIVE_WINDOW", {kUser, now}, XServer::connectionOfQt());
  // To bspwm 0.9 the only window of a workspace has the keyboard, and it gives a popover none.
  const auto active = server_.number(server_.root(), "_NET_ACTIVE_WINDOW");
  if (window.isExposed() && active.value_or(XCB_NONE) == XCB_NONE) {
    xcb_set_input_focus(XServer::connectionOfQt(), XCB_INPUT_FOCUS_POINTER_ROOT, idOf(window), now);
  }
  xcb_flush(XServer::connectionOfQt());
}

std::vector<DesktopPanel> XOwnWindows::panels() {
  std::vector<DesktopPanel> panels;
  for (const XPanel& panel : panelsOn(server_)) {
    const QScreen* screen = screenOf(panel.geometry);
    panels.push_back(
        {fromPixels(panel.geometry, screen), fromPixels(panel.reserved, screen), panel.pid});
  }
  return panels;
}

std::optional<PanelPart> XOwnWindows::partDrawnBy(std::uint32_t pid) {
  for (const XPanel& panel : panelsOn(server_)) {
    const auto part = linux_desktop::partDrawnBy(pid, panel, server_);
    if (!part) continue;
    const QScreen* screen = screenOf(panel.geometry);
    return PanelPart{fromPixels(*part, screen), fromPixels(panel.geometry, screen)};
  }
  return std::nullopt;
}

std::unique_ptr<OwnWindows::PressWatch> XOwnWindows::watchPresses(QWindow& window,
                                                                  const Pressed& pressed) {
  const auto isOnPanel = [this](QPoint onRoot) {
    return std::ranges::any_of(panelsOn(server_), [onRoot](const XPanel& panel) {
      return panel.geometry.contains(onRoot);
    });
  };
  return std::make_unique<XPressWatch>(events_, idOf(window), isOnPanel, pressed);
}

}  // namespace linux_desktop
