#include "desktop/linux/wallpaper/DesktopWallpapers.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaObject>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>
#include <array>
#include <chrono>
#include <utility>
#include <vector>

#include "desktop/linux/bus/BusCall.h"
#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/PlasmaPicture.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kSlideShowPlugin = "org.kde.slideshow";

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

/// The desktops of Plasma's shell, one a screen, reached through its scripting. What was read
/// serves for the rest of that turn of the event loop: a script takes the shell ten milliseconds
/// and more, and one toggle asks about each monitor several times. Main thread only.
class PlasmaDesktops {
 public:
  /// `changed` is called when a shell that had let a question run into its limit has answered that
  /// anything differs.
  explicit PlasmaDesktops(std::function<void()> changed) : changed_(std::move(changed)) {}

  /// What the shell keeps for the screen whose corner that is: `id`, its number as `screen`,
  /// `plugin`, the `image` that the picture plugin would show, the one that is `shown`, `fill`,
  /// `color`, `look` and `window`; for a slide show of Plasma 6 also its `slide`. None when there
  /// is no such screen or the shell does not answer.
  [[nodiscard]] std::optional<QJsonObject> at(const QPoint& corner,
                                              const QDeadlineTimer& deadline) {
    if (!isOfThisTurn_ && !read(deadline)) return std::nullopt;
    return lastAt(corner);
  }
  /// As the shell told last.
  [[nodiscard]] std::optional<QJsonObject> lastAt(const QPoint& corner) const {
    if (!lastRead_) return std::nullopt;
    for (const QByteArray& line : *lastRead_) {
      const QJsonObject desktop = QJsonDocument::fromJson(line).object();
      const QPoint place(desktop[QLatin1String("x")].toInt(), desktop[QLatin1String("y")].toInt());
      if (!desktop.isEmpty() && place == corner) return desktop;
    }
    return std::nullopt;
  }

  /// Gives the desktop `id` that `plugin` and that `image`, and has a slide show go on from its
  /// `slide`, if any; whoever calls tells of the change. False: nothing was set, or the shell does
  /// not answer.
  [[nodiscard]] bool set(const QJsonObject& wanted, const QDeadlineTimer& deadline) {
    const QByteArray object = QJsonDocument(wanted).toJson(QJsonDocument::Compact);
    const QString write = QString(kWrite).replace(QLatin1String("%1"), QString::fromUtf8(object));
    Lines printed = evaluate(write + kRead, deadline);
    const bool isSet = !printed.empty() && printed.front() == "SET";
    if (isSet) printed.erase(printed.begin());
    keep(std::move(printed));
    if (isSet) hasNews_ = false;
    return isSet;
  }

  /// Asks anew, whether anything differs from what it was at the last change that was told.
  [[nodiscard]] bool hasChanged() {
    const bool wasKnown = lastRead_.has_value();
    return read(BusPeer::deadline()) && hasNewsSince(wasKnown);
  }

 private:
  /// What a script printed; nothing when the shell does not answer.
  using Lines = std::vector<QByteArray>;

  [[nodiscard]] Lines evaluate(const QString& script, const QDeadlineTimer& deadline) {
    return linesOf(shell_.call(evaluation(script), deadline));
  }

  [[nodiscard]] QDBusMessage evaluation(const QString& script) const {
    return shell_.method(kPath, kInterface, QStringLiteral("evaluateScript"), {script});
  }

  static Lines linesOf(const QDBusMessage& answer) {
    if (isError(answer)) {
      qCDebug(lcWallpaper) << "plasmashell:" << answer.errorMessage();
      return {};
    }
    const QByteArray printed = answer.arguments().value(0).toString().trimmed().toUtf8();
    qCDebug(lcWallpaper) << "plasmashell:" << printed;
    const QList<QByteArray> lines = printed.split('\n');
    return {lines.begin(), lines.end()};
  }

  /// From Plasma 6 on only the bus tells which slide is on; before, it does not know the question.
  void askForSlides(Lines& printed, const QDeadlineTimer& deadline) {
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

  /// False: that is no answer of a reading script that came to its end.
  bool keep(Lines printed) {
    isOfThisTurn_ = !printed.empty() && printed.back() == "OK";
    if (!isOfThisTurn_) return false;
    hasNews_ = hasNews_ || (lastRead_ && *lastRead_ != printed);
    lastRead_ = std::move(printed);
    QMetaObject::invokeMethod(
        &context_, [this] { isOfThisTurn_ = false; }, Qt::QueuedConnection);
    return true;
  }

  [[nodiscard]] bool hasNewsSince(bool wasKnown) {
    return std::exchange(hasNews_, false) || !wasKnown;
  }

  /// One that is starting takes seconds to answer.
  void awaitAnswer() {
    if (std::exchange(isAwaited_, true)) return;
    ask(QDBusConnection::sessionBus(), evaluation(kRead), &context_,
        [this](const QDBusMessage& answer) {
          isAwaited_ = false;
          const bool wasKnown = lastRead_.has_value();
          if (keep(linesOf(answer)) && hasNewsSince(wasKnown)) changed_();
        });
  }

  bool read(const QDeadlineTimer& deadline) {
    Lines printed = evaluate(kRead, deadline);
    if (printed.empty()) awaitAnswer();
    askForSlides(printed, deadline);
    return keep(std::move(printed));
  }

  BusPeer shell_{QStringLiteral("org.kde.plasmashell")};
  std::function<void()> changed_;
  bool isAwaited_ = false;
  /// One desktop a line.
  std::optional<Lines> lastRead_;
  /// It was something else before, of which nobody has been told.
  bool hasNews_ = false;
  bool isOfThisTurn_ = false;
  QObject context_;
};

const QString kPicturePlugin = QStringLiteral("org.kde.image");
const QString kColourPlugin = QStringLiteral("org.kde.color");
constexpr std::array kTexts{"plugin", "image", "slide"};

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

class PlasmaWallpaper final : public WallpaperAdapter {
 public:
  std::optional<Backdrop> backdrop(const Monitor& monitor) override {
    const QPoint corner = monitor.points.topLeft();
    auto desktop = desktops_.at(corner, BusPeer::deadline());
    if (!desktop) desktop = desktops_.lastAt(corner);
    if (!desktop) return std::nullopt;
    const auto text = [&](const char* key) {
      return desktop->value(QLatin1String(key)).toString();
    };
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

  std::optional<WallpaperState> state(const Monitor& monitor) override {
    const auto desktop = desktops_.at(monitor.points.topLeft(), BusPeer::deadline());
    if (!desktop) return std::nullopt;
    WallpaperState state{{{"id", desktop->value(QLatin1String("id")).toInt()}}, {}};
    for (const char* key : kTexts) {
      const QJsonValue text = desktop->value(QLatin1String(key));
      if (!text.isUndefined()) state.kept.emplace(key, text.toString().toStdString());
    }
    if (isSlideShow(*desktop)) return state;
    if (const auto shown = backdrop(monitor)) state.file = shown->file;
    return state;
  }

  Fault show(const Monitor& monitor, const QString& file, const Dictionary& /*options*/) override {
    const QDeadlineTimer deadline = BusPeer::deadline();
    const auto desktop = desktops_.at(monitor.points.topLeft(), deadline);
    if (!desktop) return "Plasma does not answer for this screen.";
    return write(
        {{QStringLiteral("id"), desktop->value(QLatin1String("id"))},
         {QStringLiteral("plugin"), kPicturePlugin},
         {QStringLiteral("image"), QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded())}},
        deadline);
  }

  Fault restore(const Monitor& /*monitor*/, const Dictionary& kept) override {
    QJsonObject wanted{
        {QStringLiteral("id"),
         static_cast<qint64>(platform::valueOf<std::int64_t>(kept, "id").value_or(-1))}};
    for (const char* key : kTexts) {
      const auto text = platform::valueOf<std::string>(kept, key);
      if (text) wanted.insert(QLatin1String(key), QString::fromStdString(*text));
    }
    return write(wanted, BusPeer::deadline());
  }

  void setChanged(std::function<void()> changed) override {
    changed_ = std::move(changed);
    file_.reset();
    looking_.stop();
    if (!changed_) return;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    file_.emplace(QStringList(folder + QStringLiteral("/plasma-org.kde.plasma.desktop-appletsrc")),
                  [this] { looking_.start(); });
  }

  [[nodiscard]] BackdropManner manner() const override {
    return {.turnsUpright = true, .centersTiles = true};
  }

 private:
  [[nodiscard]] Fault write(const QJsonObject& wanted, const QDeadlineTimer& deadline) {
    if (!desktops_.set(wanted, deadline)) return "Plasma does not take the picture.";
    if (changed_) changed_();
    return std::nullopt;
  }

  std::function<void()> changed_;
  PlasmaDesktops desktops_{[this] {
    if (changed_) changed_();
  }};
  /// Has more in it than pictures, and is told of by several events at a time.
  std::optional<FileWatch> file_;
  OneShot looking_{std::chrono::milliseconds(0), [this] {
                     if (desktops_.hasChanged() && changed_) changed_();
                   }};
};

}  // namespace

std::shared_ptr<WallpaperAdapter> plasmaWallpaper(const WallpaperSurroundings& /*surroundings*/) {
  return std::make_shared<PlasmaWallpaper>();
}

}  // namespace linux_desktop
