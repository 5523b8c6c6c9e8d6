#include "desktop/linux/wallpaper/PcManFmQtWallpaper.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>
#include <span>

#include "desktop/linux/wallpaper/DesktopProcess.h"
#include "desktop/linux/wallpaper/SettingsText.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kSection = "Desktop";
constexpr const char* kPicture = "Wallpaper";
constexpr const char* kContents = "contents";
constexpr const char* kFile = "file";
constexpr const char* kColoursOnly = "none";

struct StyleRow {
  const char* name;
  BackdropStyle style;
};
constexpr StyleRow kStyles[] = {
    {kColoursOnly, BackdropStyle::None}, {"stretch", BackdropStyle::Stretched},
    {"fit", BackdropStyle::Fitted},      {"center", BackdropStyle::Centered},
    {"tile", BackdropStyle::Tiled},      {"zoom", BackdropStyle::Zoomed},
};

BackdropStyle styleNamed(const QString& name) {
  const auto* row = std::ranges::find_if(
      kStyles, [&](const auto& each) { return name == QLatin1String(each.name); });
  return row == std::end(kStyles) ? BackdropStyle::None : row->style;
}

/// An existing file that is no picture: the desktop shows its colour then.
const QString kNoPicture = QStringLiteral("/dev/null");

QByteArray withoutPicture(const QByteArray& text) {
  return withValue(text, kSection, kPicture, std::nullopt);
}

}  // namespace

struct PcManFmQtWallpaper::Settings {
  QString picture;
  BackdropStyle style = BackdropStyle::None;
  QColor colour;
  bool perMonitor = false;
  bool upright = false;
  bool slideShow = false;
};

PcManFmQtWallpaper::PcManFmQtWallpaper(const WallpaperSurroundings& surroundings)
    : name_(QStringLiteral("pcmanfm-qt/%1/settings.conf")
                .arg(profileIn(commandLineOf(surroundings.desktop.pid)))),
      file_(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
            QLatin1Char('/') + name_) {}

PcManFmQtWallpaper::Settings PcManFmQtWallpaper::read() const {
  // Until the first change the file is the distribution's, or there is none.
  const QString file = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, name_);
  QSettings stored(file.isEmpty() ? file_ : file, QSettings::IniFormat);
  stored.sync();
  stored.beginGroup(QLatin1String(kSection));
  const auto value = [&](const char* key, const QVariant& otherwise = {}) {
    return stored.value(QLatin1String(key), otherwise);
  };
  Settings settings;
  settings.picture = value(kPicture).toString();
  settings.style = styleNamed(value("WallpaperMode").toString());
  settings.colour = QColor(value("BgColor", QStringLiteral("#000000")).toString());
  settings.perMonitor = value("PerScreenWallpaper").toBool();
  settings.upright = value("TransformWallpaper").toBool();
  settings.slideShow =
      value("SlideShowInterval").toInt() > 0 && !value("WallpaperDirectory").toString().isEmpty();
  return settings;
}

BackdropManner PcManFmQtWallpaper::manner() const {
  const Settings settings = read();
  return {.rounding = settings.perMonitor ? SizeRounding::Up : SizeRounding::Down,
          .turnsUpright = settings.upright};
}

std::optional<Backdrop> PcManFmQtWallpaper::backdrop(const Monitor& /*monitor*/) {
  const Settings settings = read();
  Backdrop backdrop;
  backdrop.primary = backdrop.secondary = settings.colour;
  backdrop.style = settings.style;
  if (!inspiteOfMode_.isEmpty() && inspiteOfMode_ == settings.picture) {
    backdrop.style = BackdropStyle::Stretched;
  }
  if (backdrop.style == BackdropStyle::None) return backdrop;
  backdrop.file = settings.picture;
  backdrop.spansMonitors = !settings.perMonitor;
  return backdrop;
}

std::optional<Dictionary> PcManFmQtWallpaper::state(const Monitor& /*monitor*/) {
  const Settings settings = read();
  Dictionary state{{kSlideShow, settings.slideShow}};
  const bool shows = settings.style != BackdropStyle::None || settings.picture == inspiteOfMode_;
  if (shows && QFileInfo::exists(settings.picture)) {
    state.emplace(kFile, QFile::encodeName(settings.picture).toStdString());
  }
  if (const auto contents = settingsText(file_)) state.emplace(kContents, contents->toStdString());
  return state;
}

QDBusMessage PcManFmQtWallpaper::order(const QString& file, const QString& mode) const {
  return peer_.method(QStringLiteral("/Application"), QStringLiteral("org.pcmanfm.Application"),
                      QStringLiteral("setWallpaper"), {file, mode});
}

std::optional<std::string> PcManFmQtWallpaper::tell(const QString& file, const QString& mode,
                                                    const QDeadlineTimer& deadline) {
  const QDBusMessage answer = peer_.call(order(file, mode), deadline);
  if (answer.type() == QDBusMessage::ErrorMessage) return reasonOf(answer);
  return std::nullopt;
}

std::optional<std::string> PcManFmQtWallpaper::show(const Monitor& /*monitor*/,
                                                    const QString& file) {
  const QDeadlineTimer deadline = BusPeer::deadline();
  const Settings before = read();
  const bool coloursOnly = before.style == BackdropStyle::None;
  if (auto reason = tell(file, coloursOnly ? QStringLiteral("stretch") : QString(), deadline)) {
    // What ran into its limit still waits in the desktop's queue, and so will this, behind it.
    const bool hadPicture = !coloursOnly && QFileInfo::exists(before.picture);
    const QDBusMessage undo = order(hadPicture ? before.picture : kNoPicture, {});
    BusPeer::send(std::span(&undo, 1));
    return reason;
  }
  // pcmanfm-qt 1.2 keeps a mode that it was told for its windows, but does not save it.
  if (coloursOnly) inspiteOfMode_ = file;
  if (const auto text = settingsText(file_)) ours_ = withoutPicture(*text);
  return std::nullopt;
}

std::optional<std::string> PcManFmQtWallpaper::restore(const Monitor& /*monitor*/,
                                                       const Dictionary& state) {
  const auto picture = platform::valueOf<std::string>(state, kFile);
  const QString file =
      picture ? QFile::decodeName(QByteArray::fromStdString(*picture)) : kNoPicture;
  if (auto reason = tell(file, {}, BusPeer::deadline())) return reason;
  const auto contents = platform::valueOf<std::string>(state, kContents);
  return putBackFile(contents ? std::optional(QByteArray::fromStdString(*contents)) : std::nullopt);
}

std::optional<std::string> PcManFmQtWallpaper::putBackFile(
    const std::optional<QByteArray>& old) const {
  const auto present = settingsText(file_);
  if (!present) return putSettingsText(file_, old);
  const QByteArray rest = withoutPicture(*present);
  if (rest == ours_ || (old && rest == withoutPicture(*old))) return putSettingsText(file_, old);
  // Somebody has changed other settings since; they stay.
  const auto picture = old ? writtenValue(*old, kSection, kPicture) : std::nullopt;
  return putSettingsText(file_, withValue(*present, kSection, kPicture, picture));
}

void PcManFmQtWallpaper::setChanged(std::function<void()> changed) {
  watch_.reset();
  if (changed) watch_ = std::make_unique<FileWatch>(QStringList{file_}, std::move(changed));
}

}  // namespace linux_desktop
