#include "desktop/linux/wallpaper/WallpaperTable.h"

#include <array>

#include "desktop/linux/wallpaper/DesktopWallpapers.h"

namespace linux_desktop {
namespace {

using Surroundings = WallpaperSurroundings;

constexpr const char* kXfdesktop = "org.xfce.xfdesktop";
constexpr const char* kCaja = "org.mate.Caja";
constexpr const char* kPlasmashell = "org.kde.plasmashell";
constexpr const char* kPcManFmQt = "org.pcmanfm.PCManFM";

/// Who draws the desktop, by its window, and confirmed by its name on the bus.
bool isDrawnBy(const Surroundings& surroundings, const char* windowClass, const char* name) {
  return surroundings.window.windowClass == QLatin1String(windowClass) &&
         surroundings.busNames.contains(QLatin1String(name));
}

/// For a desktop that no window shows: by its name on the bus, where the environment agrees.
bool isRunningUnseen(const Surroundings& surroundings, const char* name, const char* environment) {
  return surroundings.window.id == 0 && surroundings.busNames.contains(QLatin1String(name)) &&
         surroundings.environment.contains(QLatin1String(environment), Qt::CaseInsensitive);
}

bool runsXfce(const Surroundings& surroundings) {
  return isDrawnBy(surroundings, "Xfdesktop", kXfdesktop) ||
         isRunningUnseen(surroundings, kXfdesktop, "XFCE");
}

bool runsMate(const Surroundings& surroundings) {
  return isDrawnBy(surroundings, "Caja", kCaja) ||
         // With the icons switched off the settings daemon draws the background.
         isRunningUnseen(surroundings, "org.mate.SettingsDaemon", "MATE");
}

bool runsPlasma(const Surroundings& surroundings) {
  return isDrawnBy(surroundings, "plasmashell", kPlasmashell) ||
         isRunningUnseen(surroundings, kPlasmashell, "KDE");
}

bool runsLxqt(const Surroundings& surroundings) {
  return isDrawnBy(surroundings, "pcmanfm-qt", kPcManFmQt) ||
         (surroundings.window.id == 0 &&
          surroundings.busNames.contains(QLatin1String(kPcManFmQt)) && hasPcManFmQtDesktop());
}

// Shells that draw the picture themselves, under icon windows that one looks through.

constexpr const char* kCinnamon = "org.Cinnamon";
constexpr const char* kFlashback = "org.gnome.Flashback";
constexpr const char* kBudgie = "org.budgie_desktop.BudgieWM";
/// Flashback and Budgie have it as well.
constexpr const char* kGnomeShell = "org.gnome.Shell";
constexpr const char* kEnlightenment = "org.enlightenment.wm.service";

template <const char* const& name>
bool runs(const Surroundings& surroundings) {
  return surroundings.busNames.contains(QLatin1String(name));
}

bool runsGnome(const Surroundings& surroundings) {
  return runs<kGnomeShell>(surroundings) && !runs<kFlashback>(surroundings);
}

bool runsFlashback(const Surroundings& surroundings) {
  return isDrawnBy(surroundings, "Gnome-flashback", kFlashback);
}

bool isBare(const Surroundings& surroundings) {
  const bool isAShells = runs<kCinnamon>(surroundings) || runs<kBudgie>(surroundings) ||
                         runsGnome(surroundings) || runs<kEnlightenment>(surroundings);
  return surroundings.window.id == 0 && !isAShells && surroundings.facts.bareDesktop() != nullptr;
}

constexpr GSettingsDesktop kMateSettings{
    .name = "MATE", .schema = "org.mate.background", .picture = "picture-filename"};
constexpr GSettingsDesktop kCinnamonSettings{
    .name = "Cinnamon",
    .schema = "org.cinnamon.desktop.background",
    .picture = "picture-uri",
    .slideShow = "org.cinnamon.desktop.background.slideshow"};
constexpr GSettingsDesktop kFlashbackSettings{
    .name = "GNOME Flashback", .schema = "org.gnome.desktop.background", .picture = "picture-uri"};
constexpr GSettingsDesktop kBudgieSettings{.name = "Budgie",
                                           .schema = "org.gnome.desktop.background",
                                           .picture = "picture-uri",
                                           .composed = true,
                                           .isBlackWithoutPicture = true};
constexpr GSettingsDesktop kGnomeSettings{.name = "GNOME",
                                          .schema = "org.gnome.desktop.background",
                                          .picture = "picture-uri",
                                          .darkPicture = "picture-uri-dark",
                                          .composed = true};

template <const GSettingsDesktop& desktop>
std::shared_ptr<WallpaperAdapter> inSettings(const Surroundings& /*surroundings*/) {
  return gsettingsWallpaper(desktop);
}

std::shared_ptr<WallpaperAdapter> makeBare(const Surroundings& surroundings) {
  return surroundings.facts.bareDesktop();
}

constexpr std::array kTable{
    WallpaperRow{"Xfce", kXfdesktop, &runsXfce, &xfceWallpaper},
    WallpaperRow{"MATE", kCaja, &runsMate, &inSettings<kMateSettings>},
    WallpaperRow{"Plasma", kPlasmashell, &runsPlasma, &plasmaWallpaper},
    WallpaperRow{"LXQt", kPcManFmQt, &runsLxqt, &pcManFmQtWallpaper},
    WallpaperRow{"LXDE", "", &runsPcManFm, &pcManFmWallpaper},
    WallpaperRow{"Cinnamon", kCinnamon, &runs<kCinnamon>, &inSettings<kCinnamonSettings>},
    WallpaperRow{"GNOME Flashback", kFlashback, &runsFlashback, &inSettings<kFlashbackSettings>},
    WallpaperRow{"Budgie", kBudgie, &runs<kBudgie>, &inSettings<kBudgieSettings>},
    WallpaperRow{"GNOME", kGnomeShell, &runsGnome, &inSettings<kGnomeSettings>},
    WallpaperRow{"the bare screen", "", &isBare, &makeBare},
};

}  // namespace

std::span<const WallpaperRow> wallpaperTable() {
  return kTable;
}

}  // namespace linux_desktop
