#include "desktop/linux/wallpaper/PlasmaDesktops.h"

#include <QDBusArgument>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMetaObject>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>
#include <QVariantMap>
#include <cmath>
#include <limits>
#include <utility>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

QString themePicture(const PlasmaLook& look) {
  const QString defaults = QStandardPaths::locate(
      QStandardPaths::GenericDataLocation,
      QStringLiteral("plasma/look-and-feel/%1/contents/defaults").arg(look.package));
  if (defaults.isEmpty()) return {};
  const QSettings file(defaults, QSettings::IniFormat);
  return file.value(QStringLiteral("Wallpaper/Image")).toString();
}

QString pathOf(const QString& image) {
  if (image.isEmpty() || image.startsWith(QLatin1Char('/'))) return image;
  if (image.startsWith(QLatin1String("file:"))) return QUrl(image).toLocalFile();
  return QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                                QStringLiteral("wallpapers/") + image,
                                QStandardPaths::LocateDirectory);
}

/// Of a picture that is named after it; empty for any other.
QSize namedSize(const QString& name) {
  static const QRegularExpression size(QStringLiteral("^(\\d+)x(\\d+)$"));
  const QRegularExpressionMatch match = size.match(name);
  return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

/// Plasma's own measure: the proportions count before the width, and a picture that has to be
/// enlarged before one that is too large.
float distance(const QSize& picture, const QSize& screen) {
  constexpr float kWeightOfProportions = 25000;
  const auto ratio = [](const QSize& size) {
    return static_cast<float>(size.width()) / static_cast<float>(size.height());
  };
  const int wider = picture.width() - screen.width();
  return std::abs(ratio(picture) - ratio(screen)) * kWeightOfProportions +
         static_cast<float>(wider >= 0 ? wider : -2 * wider);
}

QString bestIn(const QDir& folder, const QSize& screen) {
  QString best;
  float least = std::numeric_limits<float>::max();
  for (const QFileInfo& file : folder.entryInfoList(QDir::Files)) {
    const QSize size = namedSize(file.completeBaseName());
    if (size.isEmpty()) continue;
    const float away = distance(size, screen);
    if (away >= least) continue;
    least = away;
    best = file.filePath();
  }
  return best;
}

}  // namespace

QString plasmaPicture(const QString& image, const QSize& size, const PlasmaLook& look) {
  QString path = pathOf(image.isEmpty() ? themePicture(look) : image);
  const QFileInfo found(path);
  if (path.isEmpty() || found.isFile()) return path;
  const QDir folder(QDir(path).filePath(QStringLiteral("contents")));
  const QString dark =
      look.isDark ? bestIn(folder.filePath(QStringLiteral("images_dark")), size) : QString();
  return dark.isEmpty() ? bestIn(folder.filePath(QStringLiteral("images")), size) : dark;
}

namespace {

const QString kPath = QStringLiteral("/PlasmaShell");
const QString kInterface = QStringLiteral("org.kde.PlasmaShell");

// A script that throws ends without an error, so each says how far it has come. A desktop of
// another activity or of a screen that has gone has no screen. A slide show notes which picture is
// on, up to Plasma 5.
const QString kRead = QStringLiteral(R"(
const setting = (group, key) => String(ConfigFile("kdeglobals", group).readEntry(key));
const look = setting("KDE", "LookAndFeelPackage");
const window = setting("Colors:Window", "BackgroundNormal");
for (const d of desktops()) {
  if (d.screen < 0) continue;
  const g = screenGeometry(d.screen);
  const read = function(plugin, key) {
    d.currentConfigGroup = ["Wallpaper", plugin, "General"];
    return String(d.readConfig(key));
  };
  print(JSON.stringify({id: d.id, screen: d.screen, x: g.x, y: g.y, plugin: d.wallpaperPlugin,
                        image: read("org.kde.image", "Image"),
                        shown: read(d.wallpaperPlugin, "Image"),
                        fill: read(d.wallpaperPlugin, "FillMode"),
                        color: read(d.wallpaperPlugin, "Color"), look, window}) + "\n");
}
print("OK\n");
)");

// The picture before the plugin that shows it, so that no other picture comes up between. A slide
// show goes on from the one that is noted, which Plasma 6 overwrites when the plugin changes. In
// Plasma 5 that note would become the picture plugin's, too.
const QString kWrite = QStringLiteral(R"(
const wanted = %1;
const target = desktopById(wanted.id);
target.currentConfigGroup = ["Wallpaper", "org.kde.image", "General"];
if (String(target.readConfig("Image")) !== wanted.image) target.writeConfig("Image", wanted.image);
if (target.wallpaperPlugin !== wanted.plugin) target.wallpaperPlugin = wanted.plugin;
if (wanted.slide) {
  target.currentConfigGroup = ["Wallpaper", wanted.plugin, "General"];
  target.writeConfig("Image", wanted.slide);
}
print("SET\n");
)");

}  // namespace

PlasmaDesktops::Lines PlasmaDesktops::evaluate(const QString& script,
                                               const QDeadlineTimer& deadline) {
  const QDBusMessage answer = shell_.call(
      shell_.method(kPath, kInterface, QStringLiteral("evaluateScript"), {script}), deadline);
  if (isError(answer)) {
    qCDebug(lcWallpaper) << "plasmashell:" << answer.errorMessage();
    return {};
  }
  const QByteArray printed = answer.arguments().value(0).toString().trimmed().toUtf8();
  qCDebug(lcWallpaper) << "plasmashell:" << printed;
  const QList<QByteArray> lines = printed.split('\n');
  return {lines.begin(), lines.end()};
}

void PlasmaDesktops::askForSlides(Lines& printed, const QDeadlineTimer& deadline) {
  for (QByteArray& line : printed) {
    QJsonObject desktop = QJsonDocument::fromJson(line).object();
    if (desktop[QLatin1String("plugin")] != QLatin1String(kSlideShowPlugin)) continue;
    const auto screen = static_cast<uint>(desktop[QLatin1String("screen")].toInt());
    const QDBusMessage answer = shell_.call(
        shell_.method(kPath, kInterface, QStringLiteral("wallpaper"), {screen}), deadline);
    if (isError(answer)) return;
    const auto settings = qdbus_cast<QVariantMap>(answer.arguments().value(0));
    const QString slide = settings.value(QStringLiteral("Image")).toString();
    if (slide.isEmpty()) continue;
    desktop.insert(QLatin1String("shown"), slide);
    desktop.insert(QLatin1String("slide"), slide);
    line = QJsonDocument(desktop).toJson(QJsonDocument::Compact);
  }
}

bool PlasmaDesktops::keep(Lines printed) {
  isOfThisTurn_ = !printed.empty() && printed.back() == "OK";
  if (!isOfThisTurn_) return false;
  hasNews_ = hasNews_ || (lastRead_ && *lastRead_ != printed);
  lastRead_ = std::move(printed);
  QMetaObject::invokeMethod(
      &context_, [this] { isOfThisTurn_ = false; }, Qt::QueuedConnection);
  return true;
}

bool PlasmaDesktops::read(const QDeadlineTimer& deadline) {
  Lines printed = evaluate(kRead, deadline);
  askForSlides(printed, deadline);
  return keep(std::move(printed));
}

std::optional<QJsonObject> PlasmaDesktops::at(const QPoint& corner,
                                              const QDeadlineTimer& deadline) {
  if (!isOfThisTurn_ && !read(deadline)) return std::nullopt;
  for (const QByteArray& line : *lastRead_) {
    const QJsonObject desktop = QJsonDocument::fromJson(line).object();
    const QPoint place(desktop[QLatin1String("x")].toInt(), desktop[QLatin1String("y")].toInt());
    if (!desktop.isEmpty() && place == corner) return desktop;
  }
  return std::nullopt;
}

bool PlasmaDesktops::set(const QJsonObject& wanted, const QDeadlineTimer& deadline) {
  const QByteArray object = QJsonDocument(wanted).toJson(QJsonDocument::Compact);
  const QString write = QString(kWrite).replace(QLatin1String("%1"), QString::fromUtf8(object));
  Lines printed = evaluate(write + kRead, deadline);
  const bool isSet = !printed.empty() && printed.front() == "SET";
  if (isSet) printed.erase(printed.begin());
  keep(std::move(printed));
  if (isSet) hasNews_ = false;
  return isSet;
}

bool PlasmaDesktops::hasChanged() {
  const bool wasKnown = lastRead_.has_value();
  if (!read(BusPeer::deadline())) return false;
  return std::exchange(hasNews_, false) || !wasKnown;
}

}  // namespace linux_desktop
