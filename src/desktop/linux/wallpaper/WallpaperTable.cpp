#include "desktop/linux/wallpaper/WallpaperTable.h"

#include <QDBusConnection>
#include <QDBusReply>
#include <QMetaObject>
#include <array>
#include <utility>

#include "desktop/linux/log/Log.h"
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

WallpaperChoice::WallpaperChoice(DesktopFacts& facts)
    : surroundings_{
          facts,
          {},
          {},
          qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(QLatin1Char(':'), Qt::SkipEmptyParts)} {
  names_.setConnection(QDBusConnection::sessionBus());
  for (const WallpaperRow& row : wallpaperTable()) {
    if (*row.busName != '\0') names_.addWatchedService(QLatin1String(row.busName));
  }
  QObject::connect(&names_, &QDBusServiceWatcher::serviceOwnerChanged, &names_, [this] {
    if (changed_) changed_();
    if (programsChanged_) programsChanged_();
  });
}

WallpaperChoice::~WallpaperChoice() {
  take(nullptr, nullptr);
}

bool WallpaperChoice::isStillTheSame(const DesktopWindow& seen) const {
  const DesktopWindow& before = surroundings_.window;
  if (!adapter_ || seen.id == 0 || seen.windowClass != before.windowClass) return false;
  // xfdesktop 4.20 has a window a monitor, and any of them can be the lowest.
  return seen.id == before.id || (seen.pid != 0 && seen.pid == before.pid);
}

WallpaperChoice::Current WallpaperChoice::current() {
  if (isOfThisTurn_) return {row_, adapter_.get()};
  isOfThisTurn_ = true;
  QMetaObject::invokeMethod(
      &turn_, [this] { isOfThisTurn_ = false; }, Qt::QueuedConnection);
  const DesktopWindow seen = surroundings_.facts.desktopWindow();
  if (!isStillTheSame(seen)) choose(seen);
  return {row_, adapter_.get()};
}

void WallpaperChoice::choose(const DesktopWindow& seen) {
  const DesktopWindow& before = surroundings_.window;
  const bool sameProgram = seen.id == before.id && seen.pid == before.pid;
  surroundings_.window = seen;
  const QDBusReply<QStringList> names = bus_.call(callToBus("ListNames"));
  surroundings_.busNames = names.value();
  for (const WallpaperRow& row : wallpaperTable()) {
    if (!row.runs(surroundings_)) continue;
    if (&row == row_ && sameProgram && adapter_) return;
    auto adapter = row.make(surroundings_);
    if (!adapter) continue;
    qCInfo(lcWallpaper) << "the desktop's pictures are those of" << row.name;
    return take(&row, std::move(adapter));
  }
  take(nullptr, nullptr);
}

void WallpaperChoice::take(const WallpaperRow* row, std::shared_ptr<WallpaperAdapter> adapter) {
  // It may live on.
  if (adapter_) adapter_->setChanged({});
  row_ = row;
  adapter_ = std::move(adapter);
  if (adapter_) adapter_->setChanged(changed_);
}

void WallpaperChoice::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  if (adapter_) adapter_->setChanged(changed_);
}

std::span<const WallpaperRow> wallpaperTable() {
  return kTable;
}

}  // namespace linux_desktop
