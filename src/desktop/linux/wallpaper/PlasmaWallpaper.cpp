#include "desktop/linux/wallpaper/PlasmaWallpaper.h"

#include <QJsonDocument>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <array>

#include "desktop/linux/wallpaper/PlasmaPicture.h"
#include "desktop/linux/wallpaper/WallpaperLog.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

const QString kPicturePlugin = QStringLiteral("org.kde.image");
const QString kSlideShowPlugin = QStringLiteral("org.kde.slideshow");
const QString kColourPlugin = QStringLiteral("org.kde.color");
constexpr std::array kTexts{"plugin", "image"};

// A script that throws ends without an error, so each says when it has come to its end. A desktop
// of another activity or of a screen that has gone has no screen. A slide show notes which picture
// is on.
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
  print(JSON.stringify({id: d.id, x: g.x, y: g.y, plugin: d.wallpaperPlugin,
                        image: read("org.kde.image", "Image"),
                        shown: read(d.wallpaperPlugin, "Image"),
                        fill: read(d.wallpaperPlugin, "FillMode"),
                        color: read(d.wallpaperPlugin, "Color"), look, window}) + "\n");
}
print("OK\n");
)");

// The picture before the plugin that shows it, so that no other picture comes up between.
const QString kWrite = QStringLiteral(R"(
const wanted = %1;
const d = desktopById(wanted.id);
d.currentConfigGroup = ["Wallpaper", "org.kde.image", "General"];
if (String(d.readConfig("Image")) !== wanted.image) d.writeConfig("Image", wanted.image);
if (d.wallpaperPlugin !== wanted.plugin) d.wallpaperPlugin = wanted.plugin;
print("OK\n");
)");

// By the number that Plasma keeps, which is QML's Image.fillMode; none is 2.
constexpr std::array kStyles{BackdropStyle::Stretched, BackdropStyle::Fitted, BackdropStyle::Zoomed,
                             BackdropStyle::Tiled,     BackdropStyle::Tiled,  BackdropStyle::Tiled,
                             BackdropStyle::Centered};

BackdropStyle styleOf(const QString& fill) {
  bool known = false;
  const auto number = fill.toUInt(&known);
  return known && number < kStyles.size() ? kStyles.at(number) : BackdropStyle::Zoomed;
}

QColor colourOf(const QString& text) {
  const QStringList parts = text.split(QLatin1Char(','));
  if (parts.size() < 3) return Qt::black;
  return {parts[0].toInt(), parts[1].toInt(), parts[2].toInt()};
}

// Windows darker than this grey are dark to Plasma. Its colours are light where none are set.
constexpr int kDarkestLightGrey = 192;

PlasmaLook lookOf(const QString& package, const QString& window) {
  const bool isDark = !window.isEmpty() && qGray(colourOf(window).rgb()) < kDarkestLightGrey;
  return {package.isEmpty() ? QStringLiteral("org.kde.breeze.desktop") : package, isDark};
}

}  // namespace

std::optional<std::vector<QByteArray>> PlasmaWallpaper::evaluate(const QString& script,
                                                                 const QDeadlineTimer& deadline) {
  const QDBusMessage answer = shell_.call(
      shell_.method(QStringLiteral("/PlasmaShell"), QStringLiteral("org.kde.PlasmaShell"),
                    QStringLiteral("evaluateScript"), {script}),
      deadline);
  const QByteArray printed = answer.arguments().value(0).toString().trimmed().toUtf8();
  if (answer.type() == QDBusMessage::ErrorMessage || !printed.endsWith("OK")) {
    qCDebug(lcWallpaper) << "plasmashell:" << answer.errorMessage() << printed;
    return std::nullopt;
  }
  const QList<QByteArray> lines = printed.split('\n');
  return std::vector<QByteArray>(lines.begin(), lines.end() - 1);
}

std::optional<QJsonObject> PlasmaWallpaper::read(const Monitor& monitor,
                                                 const QDeadlineTimer& deadline) {
  lastRead_ = evaluate(kRead, deadline);
  for (const QByteArray& line : lastRead_.value_or(std::vector<QByteArray>())) {
    const QJsonObject desktop = QJsonDocument::fromJson(line).object();
    const QPoint corner(desktop[QLatin1String("x")].toInt(), desktop[QLatin1String("y")].toInt());
    if (!desktop.isEmpty() && corner == monitor.pixels.topLeft()) return desktop;
  }
  return std::nullopt;
}

std::optional<std::string> PlasmaWallpaper::write(const QJsonObject& wanted,
                                                  const QDeadlineTimer& deadline) {
  const QByteArray object = QJsonDocument(wanted).toJson(QJsonDocument::Compact);
  if (!evaluate(QString(kWrite).replace(QLatin1String("%1"), QString::fromUtf8(object)),
                deadline)) {
    return "Plasma does not take the picture.";
  }
  if (changed_) changed_();
  return std::nullopt;
}

void PlasmaWallpaper::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  file_.reset();
  if (!changed_) return;
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  file_.emplace(QStringList(folder + QStringLiteral("/plasma-org.kde.plasma.desktop-appletsrc")),
                [this] { fileChanged(); });
}

void PlasmaWallpaper::fileChanged() {
  const auto now = evaluate(kRead, BusPeer::deadline());
  if (now && now != lastRead_ && changed_) changed_();
}

std::optional<Backdrop> PlasmaWallpaper::backdrop(const Monitor& monitor) {
  const auto desktop = read(monitor, BusPeer::deadline());
  if (!desktop) return std::nullopt;
  const auto text = [&](const char* key) { return desktop->value(QLatin1String(key)).toString(); };
  Backdrop backdrop;
  backdrop.primary = colourOf(text("color"));
  if (text("plugin") == kColourPlugin) return backdrop;
  const QString image = text("shown");
  const bool isKnown =
      text("plugin") == kPicturePlugin || (text("plugin") == kSlideShowPlugin && !image.isEmpty());
  if (!isKnown) return std::nullopt;
  backdrop.file = plasmaPicture(image, monitor.pixels.size(), lookOf(text("look"), text("window")));
  backdrop.style = styleOf(text("fill"));
  return backdrop.file.isEmpty() ? std::nullopt : std::optional(backdrop);
}

std::optional<Dictionary> PlasmaWallpaper::state(const Monitor& monitor) {
  const auto desktop = read(monitor, BusPeer::deadline());
  if (!desktop) return std::nullopt;
  Dictionary state{{"id", desktop->value(QLatin1String("id")).toInt()}};
  for (const char* key : kTexts) {
    state.emplace(key, desktop->value(QLatin1String(key)).toString().toStdString());
  }
  if (desktop->value(QLatin1String("plugin")) == kSlideShowPlugin) state.emplace(kSlideShow, true);
  return state;
}

std::optional<std::string> PlasmaWallpaper::show(const Monitor& monitor, const QString& file) {
  const QDeadlineTimer deadline = BusPeer::deadline();
  const auto desktop = read(monitor, deadline);
  if (!desktop) return "Plasma does not answer for this screen.";
  return write(
      {{QStringLiteral("id"), desktop->value(QLatin1String("id"))},
       {QStringLiteral("plugin"), kPicturePlugin},
       {QStringLiteral("image"), QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded())}},
      deadline);
}

std::optional<std::string> PlasmaWallpaper::restore(const Monitor& /*monitor*/,
                                                    const Dictionary& state) {
  QJsonObject wanted{
      {QStringLiteral("id"),
       static_cast<qint64>(platform::valueOf<std::int64_t>(state, "id").value_or(-1))}};
  for (const char* key : kTexts) {
    const auto text = platform::valueOf<std::string>(state, key).value_or(std::string());
    wanted.insert(QLatin1String(key), QString::fromStdString(text));
  }
  return write(wanted, BusPeer::deadline());
}

}  // namespace linux_desktop
