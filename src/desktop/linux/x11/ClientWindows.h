#pragma once

#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "desktop/linux/x11/WindowManagers.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// What a window is to its application.
enum class ClientKind {
  /// Normal, or without a type.
  Normal,
  Dialog,
  /// Palettes and the like, and whatever keeps itself out of the task bar.
  Accessory,
  /// Desktop, panel, notification, splash screen.
  Furniture
};

/// Whether hiding took a window away, as its mark says.
enum HiddenMark : std::uint32_t { kBroughtForward = 0, kHidden = 1 };

/// A window that the window manager looks after, as it was when the list was read.
struct ClientWindow {
  xcb_window_t id = XCB_NONE;
  ClientKind kind = ClientKind::Normal;
  /// Minimised, by whomever.
  bool minimised = false;
  /// A HiddenMark.
  std::optional<std::uint32_t> mark;
  /// The window that it is a dialog of; that one need not be a client.
  xcb_window_t transientFor = XCB_NONE;
  std::optional<std::uint32_t> desktop;
  std::optional<std::uint32_t> pid;
  xcb_window_t leader = XCB_NONE;
  std::string gtkApplicationId;
  std::string className;
  std::string machine;

  /// Hiding took it away, and it is away still.
  [[nodiscard]] bool isHidden() const { return mark == kHidden && minimised; }
  /// It belongs to the one that `desktop` says. Mutter says "all" (EWMH 1.5: 0xffffffff) of every
  /// window of a monitor that has no workspaces; one that was moved to all would stay there for
  /// good.
  [[nodiscard]] bool isOnOneDesktop() const { return desktop && *desktop != 0xffffffff; }
};

/// Whom hiding and showing asks.
struct WindowManagerAtWork {
  /// Its own, which goes with it. None: no window manager runs.
  xcb_window_t window = XCB_NONE;
  /// Whether it says that a WindowManagerTurn comes.
  bool tellsTurn = false;
};

/// All that hiding and showing has to know, of one moment.
struct ClientList {
  /// In the window manager's order: the oldest first.
  std::vector<ClientWindow> windows;
  /// Bottom to top.
  std::vector<xcb_window_t> stacking;
  /// The stacking order from before windows were hidden; empty when none are.
  std::vector<xcb_window_t> rememberedOrder;
  xcb_window_t active = XCB_NONE;
  /// The hidden window that the user worked in last; none when there is none.
  xcb_window_t rememberedActive = XCB_NONE;
  std::uint32_t currentDesktop = 0;
  WindowManagerHabits habits;
  bool canMinimise = false;
  bool canRestack = false;
  WindowManagerAtWork manager;

  /// The remembered order without the windows that were brought forward since.
  [[nodiscard]] std::vector<xcb_window_t> knownOrder() const;
  /// Null for one that is not listed.
  [[nodiscard]] const ClientWindow* find(xcb_window_t window) const;
  /// A window that the user may work in; null for a desktop, a panel, a cover or one not listed.
  [[nodiscard]] const ClientWindow* workWindow(xcb_window_t window) const;
  /// Whether it belongs to the current workspace.
  [[nodiscard]] bool isHere(const ClientWindow& window) const;
};

/// The windows of other programs and our own, as the window manager lists them, and what is asked
/// of it and noted on them for hiding and showing.
class ClientWindows {
 public:
  /// `server` outlives this.
  explicit ClientWindows(XServer& server) : server_(server) {}
  [[nodiscard]] XServer& server() const { return server_; }

  /// Two round trips, however many windows there are.
  [[nodiscard]] ClientList read() const;
  /// Reads anew what hiding and showing change: which windows are minimised and marked, on which
  /// workspace, their order and which one is active. False, with nothing changed, when other
  /// windows are listed by now or the window manager is gone. One round trip.
  [[nodiscard]] bool refresh(ClientList& list) const;
  /// Which of these are minimised now. One round trip; none for no windows.
  [[nodiscard]] std::unordered_set<xcb_window_t> minimisedOf(
      std::span<const xcb_window_t> windows) const;

  // Nothing of what follows is sent before the server's connection is flushed, and nothing waits
  // for an answer; windows that are gone are no harm.

  void minimise(xcb_window_t window) const;
  /// Takes the minimised state back, which not every window manager heeds.
  void restore(xcb_window_t window) const;
  void activate(xcb_window_t window, xcb_timestamp_t time) const;
  void moveToDesktop(xcb_window_t window, std::uint32_t desktop) const;
  /// Right above `sibling`; below everything when that is none.
  void restack(xcb_window_t window, xcb_window_t sibling) const;
  /// Stays on the window when this process ends. None takes the mark away.
  void mark(xcb_window_t window, std::optional<std::uint32_t> mark) const;
  /// The stacking order and who is to be active again stay on the root window; none of either
  /// forgets it.
  void remember(const std::vector<xcb_window_t>& bottomToTop, xcb_window_t active) const;

 private:
  [[nodiscard]] std::vector<XProperty> rootQuestions() const;
  [[nodiscard]] ClientKind kindOf(std::span<const std::uint32_t> types) const;
  [[nodiscard]] ClientWindow windowOf(xcb_window_t id,
                                      std::span<const XPropertyValue> values) const;

  XServer& server_;
};

}  // namespace linux_desktop
