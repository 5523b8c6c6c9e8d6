#include "desktop/linux/wallpaper/PlasmaWallpaper.h"

#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <array>

#include "desktop/linux/wallpaper/PlasmaDesktops.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

const QString kPicturePlugin = QStringLiteral("org.kde.image");
const QString kColourPlugin = QStringLiteral("org.kde.color");
constexpr std::array kTexts{"plugin", "image"};
constexpr const char* kSlide = "slide";

bool isSlideShow(const QJsonObject& desktop) {
  return desktop[QLatin1String("plugin")] == QLatin1String(kSlideShowPlugin);
}

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

std::optional<std::string> PlasmaWallpaper::write(const QJsonObject& wanted,
                                                  const QDeadlineTimer& deadline) {
  if (!desktops_.set(wanted, deadline)) return "Plasma does not take the picture.";
  if (changed_) changed_();
  return std::nullopt;
}

PlasmaWallpaper::PlasmaWallpaper() {
  looking_.setSingleShot(true);
  looking_.setInterval(0);
  QObject::connect(&looking_, &QTimer::timeout, &looking_, [this] {
    if (desktops_.hasChanged() && changed_) changed_();
  });
}

void PlasmaWallpaper::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  file_.reset();
  looking_.stop();
  if (!changed_) return;
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  file_.emplace(QStringList(folder + QStringLiteral("/plasma-org.kde.plasma.desktop-appletsrc")),
                [this] { looking_.start(); });
}

std::optional<Backdrop> PlasmaWallpaper::backdrop(const Monitor& monitor) {
  const auto desktop = desktops_.at(monitor.points.topLeft(), BusPeer::deadline());
  if (!desktop) return std::nullopt;
  const auto text = [&](const char* key) { return desktop->value(QLatin1String(key)).toString(); };
  Backdrop backdrop;
  backdrop.primary = colourOf(text("color"));
  if (text("plugin") == kColourPlugin) return backdrop;
  const QString image = text("shown");
  const bool isKnown =
      text("plugin") == kPicturePlugin || (isSlideShow(*desktop) && !image.isEmpty());
  if (!isKnown) return std::nullopt;
  backdrop.file =
      plasmaPicture(image, monitor.pixels().size(), lookOf(text("look"), text("window")));
  backdrop.style = styleOf(text("fill"));
  return backdrop.file.isEmpty() ? std::nullopt : std::optional(backdrop);
}

std::optional<WallpaperState> PlasmaWallpaper::state(const Monitor& monitor) {
  const auto desktop = desktops_.at(monitor.points.topLeft(), BusPeer::deadline());
  if (!desktop) return std::nullopt;
  WallpaperState state{{{"id", desktop->value(QLatin1String("id")).toInt()}}, {}};
  for (const char* key : kTexts) {
    state.kept.emplace(key, desktop->value(QLatin1String(key)).toString().toStdString());
  }
  if (const QString slide = desktop->value(QLatin1String(kSlide)).toString(); !slide.isEmpty())
    state.kept.emplace(kSlide, slide.toStdString());
  if (isSlideShow(*desktop)) return state;
  if (const auto shown = backdrop(monitor)) state.file = shown->file;
  return state;
}

std::optional<std::string> PlasmaWallpaper::show(const Monitor& monitor, const QString& file,
                                                 const Dictionary& /*options*/) {
  const QDeadlineTimer deadline = BusPeer::deadline();
  const auto desktop = desktops_.at(monitor.points.topLeft(), deadline);
  if (!desktop) return "Plasma does not answer for this screen.";
  return write(
      {{QStringLiteral("id"), desktop->value(QLatin1String("id"))},
       {QStringLiteral("plugin"), kPicturePlugin},
       {QStringLiteral("image"), QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded())}},
      deadline);
}

std::optional<std::string> PlasmaWallpaper::restore(const Monitor& /*monitor*/,
                                                    const Dictionary& kept) {
  QJsonObject wanted{
      {QStringLiteral("id"),
       static_cast<qint64>(platform::valueOf<std::int64_t>(kept, "id").value_or(-1))}};
  for (const char* key : kTexts) {
    const auto text = platform::valueOf<std::string>(kept, key).value_or(std::string());
    wanted.insert(QLatin1String(key), QString::fromStdString(text));
  }
  if (const auto slide = platform::valueOf<std::string>(kept, kSlide))
    wanted.insert(QLatin1String(kSlide), QString::fromStdString(*slide));
  return write(wanted, BusPeer::deadline());
}

}  // namespace linux_desktop
