#pragma once

#include <QStringList>
#include <memory>
#include <span>

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

}  // namespace linux_desktop
