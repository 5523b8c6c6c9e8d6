#pragma once

#include <QDeadlineTimer>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/windowsystem/CoverFactory.h"
#include "desktop/linux/windowsystem/CoverPeer.h"
#include "desktop/linux/x11/CoverSurface.h"
#include "desktop/linux/x11/WindowManagers.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/xserver/WindowStack.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

class XCoverWindow;

/// Keeps covers above the icon windows while window managers, icon programs and users move things.
/// Watches only while it has a cover, and looks only when icons, covers or the window manager may
/// have changed, twenty times a second at most. Main thread only.
class CoverKeeper {
 public:
  /// `iconsChanged` is called when other windows of icons are there than before, while it has a
  /// cover. `events` outlives this, as this does its covers.
  CoverKeeper(XEvents& events, std::function<void()> iconsChanged);

  /// How a cover for `area` has to be made now.
  [[nodiscard]] CoverStand standFor(const QRect& area);

  void add(XCoverWindow& cover);
  void remove(XCoverWindow& cover);
  /// `arrival` has come onto the screen, at `area`.
  void arrived(const XCoverWindow& arrival, const QRect& area);

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
  void look(const WindowStack& stack, XCoverWindow& cover);

  XEvents& events_;
  XServer& server_;
  Manager manager_ = Manager::None;
  WindowManagerHabits habits_;
  bool managerIsFresh_ = false;
  bool managerChanged_ = false;
  std::vector<XCoverWindow*> covers_;
  /// The covers' and the icon windows' own windows and their top levels, when last looked at.
  std::set<xcb_window_t> known_;
  std::set<xcb_window_t> icons_;
  std::function<void()> iconsChanged_;
  std::unique_ptr<XEvents::Watch> watch_;
  /// Until it may look again.
  QDeadlineTimer rest_;
  OneShot nextLook_;
  QObject context_;
};

/// A cover on an X server: its pictures are XPictures, its places areas of the root window.
class XCoverWindow final : public CoverPeer<CoverSurface> {
 public:
  /// All outlive this.
  XCoverWindow(platform::NSWindow& window, XEvents& events, const XScreens& screens,
               CoverKeeper& keeper);
  ~XCoverWindow() override;

  using CoverPeer::giveWayAt;
  using CoverPeer::surface;
  /// Puts up another window in its place, with the same picture: what a window manager does with a
  /// window is decided when that comes.
  void remake(const CoverStand& stand);

 private:
  [[nodiscard]] std::optional<QRect> place() const override;
  [[nodiscard]] bool fits(const XPicture& picture, const QRect& place) const override;
  [[nodiscard]] std::unique_ptr<CoverSurface> make(const QRect& place,
                                                   std::shared_ptr<const XPicture> picture,
                                                   std::function<void()> arrived) override;
  void entered() override { keeper_.add(*this); }
  void left() override { keeper_.remove(*this); }
  void arrived(const QRect& place) override { keeper_.arrived(*this, place); }

  XEvents& events_;
  const XScreens& screens_;
  CoverKeeper& keeper_;
  /// How the next surface has to be made; none: as the keeper says.
  std::optional<CoverStand> stand_;
};

/// Covers of an X desktop.
class XCovers final : public CoverFactory {
 public:
  /// Both outlive this. `iconsChanged`: see CoverKeeper.
  XCovers(XEvents& events, const XScreens& screens, std::function<void()> iconsChanged)
      : events_(events), screens_(screens), keeper_(events, std::move(iconsChanged)) {}

  [[nodiscard]] std::unique_ptr<platform::port::WindowPeer> createCover(
      platform::NSWindow& window, platform::port::WindowClient& client) override;

 private:
  XEvents& events_;
  const XScreens& screens_;
  CoverKeeper keeper_;
};

}  // namespace linux_desktop
