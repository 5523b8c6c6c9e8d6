#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>
#include <span>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/wallpaper/DesktopFacts.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"

namespace linux_desktop {

/// What an adapter is chosen by and made from.
struct WallpaperSurroundings {
  /// Outlives the adapter.
  DesktopFacts& facts;
  DesktopWindow window;
  /// The names that have an owner on the session bus.
  QStringList busNames;
  /// What XDG_CURRENT_DESKTOP lists; only ever a tie-break.
  QStringList environment;
};

/// One desktop that we know to set the picture of.
struct WallpaperRow {
  const char* name;
  /// What the program that draws owns on the session bus; empty where it owns nothing.
  const char* busName;
  bool (*runs)(const WallpaperSurroundings& surroundings);
  /// Null where the desktop runs but its settings cannot be reached.
  std::shared_ptr<WallpaperAdapter> (*make)(const WallpaperSurroundings& surroundings);
};

/// In order of preference: of those that run, the first one that can be made is taken.
[[nodiscard]] std::span<const WallpaperRow> wallpaperTable();

/// The adapter of the desktop that runs now. Looks again in each turn of the event loop in which it
/// is asked, since the program that draws the desktop can start after us and be replaced: two or
/// three questions to the window system, and one to the bus where it is another than before. Main
/// thread only.
class WallpaperChoice {
 public:
  /// `facts` outlives this.
  explicit WallpaperChoice(DesktopFacts& facts);
  ~WallpaperChoice();

  struct Current {
    const WallpaperRow* row = nullptr;
    WallpaperAdapter* adapter = nullptr;
  };
  /// Null pointers where nobody's picture can be set.
  [[nodiscard]] Current current();

  /// Handed to every adapter that is chosen, and called as well when another one is chosen or a
  /// program of the table comes or goes. Empty: nobody watches.
  void setChanged(std::function<void()> changed);
  /// Called when a program of the table comes or goes. Empty: nobody watches.
  void setProgramsChanged(std::function<void()> changed) { programsChanged_ = std::move(changed); }

 private:
  [[nodiscard]] bool isStillTheSame(const DesktopWindow& seen) const;
  void choose(const DesktopWindow& seen);
  void take(const WallpaperRow* row, std::shared_ptr<WallpaperAdapter> adapter);

  WallpaperSurroundings surroundings_;
  BusPeer bus_{QStringLiteral("org.freedesktop.DBus")};
  bool isOfThisTurn_ = false;
  QObject turn_;
  const WallpaperRow* row_ = nullptr;
  std::shared_ptr<WallpaperAdapter> adapter_;
  std::function<void()> changed_;
  std::function<void()> programsChanged_;
  QDBusServiceWatcher names_;
};

}  // namespace linux_desktop
