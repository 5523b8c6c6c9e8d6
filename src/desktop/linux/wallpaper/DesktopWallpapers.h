#pragma once

#include <memory>

#include "desktop/linux/wallpaper/WallpaperTable.h"

namespace linux_desktop {

// The adapters of WallpaperTable's desktops. Each is null where its settings cannot be reached.

/// xfdesktop 4.12 and later: a picture a monitor and workspace, named by connector and number, in
/// the xfconf channel "xfce4-desktop". A turn of the event loop takes one bus call that reads and,
/// for each monitor that is set or restored, a round of all writes together.
[[nodiscard]] std::shared_ptr<WallpaperAdapter> xfceWallpaper(
    const WallpaperSurroundings& surroundings);

/// Plasma: a wallpaper plugin a screen, with settings of its own, reached through the scripting of
/// the shell. The shell tells nobody of a change, but notes each in a file, up to Plasma 5 also
/// which picture of a slide show is on. In Plasma 6 the next slide is seen with the next change of
/// anything else in there.
[[nodiscard]] std::shared_ptr<WallpaperAdapter> plasmaWallpaper(
    const WallpaperSurroundings& surroundings);

/// LXQt's desktop: one picture for all monitors. It is told over the session bus, without waiting
/// for it: a refusal that could not be foreseen is a line on standard error. What it has been told
/// stands in its settings file, which it writes as a whole before it answers; until then what it
/// was told last counts.
[[nodiscard]] std::shared_ptr<WallpaperAdapter> pcManFmQtWallpaper(
    const WallpaperSurroundings& surroundings);
/// Whether its desktop is there, where no window can be seen that shows it: its file manager alone
/// owns the same name.
[[nodiscard]] bool hasPcManFmQtDesktop();

/// LXDE's desktop: a file of settings a monitor, by its number. The first monitor follows an order
/// at once; the others are drawn from their files when the desktop starts, so with several monitors
/// it is started again. Nobody waits for either: a desktop that is busy or hangs follows when it
/// goes on.
[[nodiscard]] std::shared_ptr<WallpaperAdapter> pcManFmWallpaper(
    const WallpaperSurroundings& surroundings);
/// Whether pcmanfm draws the desktop, or is about to because of us.
[[nodiscard]] bool runsPcManFm(const WallpaperSurroundings& surroundings);

/// A desktop that shows one picture on all monitors and workspaces and keeps it in GSettings.
struct GSettingsDesktop {
  const char* name;
  const char* schema;
  /// The key of the picture: a URI, but a path where that is what the key's name says.
  const char* picture;
  /// The one that counts while the interface is dark, or null.
  const char* darkPicture = nullptr;
  /// The schema of a program that writes one picture after the other, or null. When anybody else
  /// writes one, it switches itself off.
  const char* slideShow = nullptr;
  /// GNOME's compositor draws it, which knows colours only where there is no picture, stretches one
  /// over all monitors and lays tiles around the middle of those.
  bool composed = false;
  /// It knows neither colours nor pictures that take turns: told to show one, it is black from the
  /// next login on, and until then as it was.
  bool isBlackWithoutPicture = false;
};
/// Any of those, whichever program draws it. `desktop` outlives it.
[[nodiscard]] std::shared_ptr<WallpaperAdapter> gsettingsWallpaper(const GSettingsDesktop& desktop);

}  // namespace linux_desktop
