#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <memory>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/linux/x11/CoverSurface.h"
#include "desktop/linux/xserver/WindowStack.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

/// What some window managers do with desktop windows that the others do not.
struct WindowManagerHabits {
  /// Part of the name.
  std::string_view manager;
  /// Whatever the order of windows is, icons are painted over a cover that was there first.
  bool paintsByArrival = false;
  /// Frames what belongs to another window, and has what is to be below others above panels.
  bool goesByTypeAlone = false;
};

/// A cover that is to stay where it belongs. What the keeper asks of it.
class KeptCover {
 public:
  virtual ~KeptCover() = default;
  /// Null while it is not up.
  [[nodiscard]] virtual CoverSurface* surface() = 0;
  /// Puts up another window in its place, with the same picture: what a window manager does with a
  /// window is decided when that comes.
  virtual void remake(const CoverStand& stand) = 0;
  /// Another cover has come onto the screen at `area`. One that still stands there, where its
  /// window is not any more, goes.
  virtual void giveWay(const QRect& area) = 0;
};

/// Keeps covers above the icon windows while window managers, icon programs and users move things.
/// Watches only while it has a cover, and looks only when icons, covers or the window manager may
/// have changed, twenty times a second at most. Main thread only.
class CoverKeeper {
 public:
  /// Outlives this, as this does its covers.
  explicit CoverKeeper(XEvents& events);
  /// `changed` is called when other windows of icons are there than before, while it has a cover.
  void setIconsChanged(std::function<void()> changed) { iconsChanged_ = std::move(changed); }
  CoverKeeper(const CoverKeeper&) = delete;
  CoverKeeper& operator=(const CoverKeeper&) = delete;

  /// How a cover for `area` has to be made now.
  [[nodiscard]] CoverStand standFor(const QRect& area);

  void add(KeptCover& cover);
  void remove(KeptCover& cover);
  /// `arrival` has come onto the screen, at `area`.
  void arrived(const KeptCover& arrival, const QRect& area);

 private:
  enum class Manager { None, TakesDesktopWindows, Other };

  [[nodiscard]] Manager readManager();
  /// As it is now; asked for once in a turn of the event loop.
  void learnManager();
  [[nodiscard]] CoverStand standFor(const WindowStack& stack, const QRect& area) const;
  void handle(const xcb_generic_event_t& event);
  void handleProperty(xcb_atom_t property);
  [[nodiscard]] bool concernsUs(xcb_window_t window) const;
  void lookSoon();
  void look();
  void look(const WindowStack& stack, KeptCover& cover);

  XEvents& events_;
  XServer& server_;
  Manager manager_ = Manager::None;
  WindowManagerHabits habits_;
  bool managerIsFresh_ = false;
  bool managerChanged_ = false;
  std::vector<KeptCover*> covers_;
  /// The covers' and the icon windows' own windows and their top levels, when last looked at.
  std::set<xcb_window_t> known_;
  std::set<xcb_window_t> icons_;
  std::function<void()> iconsChanged_;
  std::unique_ptr<XEvents::Watch> watch_;
  QElapsedTimer sinceLook_;
  QTimer nextLook_;
  QObject context_;
};

}  // namespace linux_desktop
