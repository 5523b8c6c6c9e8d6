#pragma once

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "desktop/linux/wallpaper/RunningDesktop.h"
#include "desktop/linux/wallpaper/WallpaperAdapter.h"
#include "desktop/linux/xserver/XEvents.h"

namespace linux_desktop {

struct RootWallpaperMemory;

/// What an adapter is made from.
struct WallpaperSurroundings {
  RunningDesktop desktop;
  std::function<std::vector<Monitor>()> monitors;
  /// Null where the interface is not on an X server. Outlives the adapter.
  XEvents* x11 = nullptr;
  /// Handed on from one adapter of the bare root window to the next.
  std::shared_ptr<RootWallpaperMemory> root;
};

/// One desktop that we know to set the picture of.
struct WallpaperRow {
  const char* name;
  /// What the program that draws owns on the session bus; empty where it owns nothing.
  const char* busName;
  bool (*runs)(const WallpaperSurroundings& surroundings);
  /// Null where the desktop runs but its settings cannot be reached.
  std::unique_ptr<WallpaperAdapter> (*make)(const WallpaperSurroundings& surroundings);
};

/// In order of preference: of those that run, the first one that can be made is taken.
[[nodiscard]] std::span<const WallpaperRow> wallpaperTable();

}  // namespace linux_desktop
