#include "desktop/linux/wallpaper/DesktopWallpapers.h"

#include <QDBusConnection>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>
#include <utility>

#include "desktop/linux/bus/BusPeer.h"
#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/files/Processes.h"
#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/PcManFmRestart.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

// A large photograph takes a busy machine three seconds.
constexpr std::chrono::seconds kLate{5};

const QString kService = QStringLiteral("org.pcmanfm.PCManFM");
const QString kPath = QStringLiteral("/Application");
const QString kInterface = QStringLiteral("org.pcmanfm.Application");

/// What LXQt's desktop is told to show. It answers an order once it has loaded, scaled and drawn
/// the picture, which takes it as long as it takes: nobody waits here. One order is on its way at a
/// time; of those given meanwhile only the last one follows it, so that a desktop that hung for
/// long goes straight to what is wished by then. Main thread only.
class PcManFmQtOrders {
 public:
  struct Order {
    QString file;
    /// Empty: the mode stays.
    QString mode;
    /// What is restored; none where a new picture is shown.
    std::optional<Dictionary> state;

    bool operator==(const Order&) const = default;
  };
  /// An order was answered; with the reason where it was refused. The next one goes out after this.
  using Answered = std::function<void(const Order&, const Fault& reason)>;

  explicit PcManFmQtOrders(Answered answered) : answered_(std::move(answered)) {}

  /// What was still to go out is sent, so that the desktop ends up as wished without us.
  ~PcManFmQtOrders() {
    if (next_) QDBusConnection::sessionBus().send(message(*next_));
  }

  void give(Order order) {
    if (!onItsWay_) {
      onItsWay_ = std::move(order);
      send();
    } else if (order == *onItsWay_) {
      next_.reset();
    } else {
      next_ = std::move(order);
    }
  }

  /// The one that was given last, until it is answered; else null.
  [[nodiscard]] const Order* last() const {
    if (next_) return &*next_;
    return onItsWay_ ? &*onItsWay_ : nullptr;
  }

 private:
  [[nodiscard]] QDBusMessage message(const Order& order) const {
    return peer_.method(kPath, kInterface, QStringLiteral("setWallpaper"),
                        {order.file, order.mode});
  }

  void send() {
    // Without a limit: an order whose answer is given up is carried out all the same.
    ask(QDBusConnection::sessionBus(), message(*onItsWay_), &late_,
        [this](const QDBusMessage& answer) { takeAnswer(answer); });
    late_.start();
  }

  void takeAnswer(const QDBusMessage& answer) {
    late_.stop();
    const Order done = *std::exchange(onItsWay_, std::exchange(next_, std::nullopt));
    answered_(done, isError(answer) ? std::optional(reasonOf(answer)) : std::nullopt);
    if (onItsWay_) send();
  }

  BusPeer peer_{kService};
  Answered answered_;
  std::optional<Order> onItsWay_;
  std::optional<Order> next_;
  /// Until an order is so late that the user should read of it.
  OneShot late_{kLate, [] {
                  qCWarning(lcWallpaper,
                            "pcmanfm-qt does not answer; it gets its picture when it goes on.");
                }};
};

constexpr const char* kSection = "Desktop";
constexpr const char* kPicture = "Wallpaper";
constexpr const char* kContents = "contents";
constexpr const char* kFile = "file";
/// What the settings name, shown or not.
constexpr const char* kNamed = "named";
/// The desktop has yet to write these settings: they are as it writes them.
constexpr const char* kUnwritten = "unwritten";

constexpr BackdropStyleName kStyles[] = {
    {"stretch", BackdropStyle::Stretched}, {"fit", BackdropStyle::Fitted},
    {"center", BackdropStyle::Centered},   {"tile", BackdropStyle::Tiled},
    {"zoom", BackdropStyle::Zoomed},
};

/// How one window for all monitors has a picture scaled for each of them.
struct Release {
  /// A library that only these releases load.
  const char* library;
  SizeRounding onEach;
};
constexpr std::array kReleases{
    Release{"libQt5Core.", SizeRounding::Up},  // 1.2
    Release{"", SizeRounding::Nearest},        // 2.1
};

const Release& releaseOf(qint64 pid) {
  const auto* last = std::prev(kReleases.end());
  return *std::find_if(kReleases.begin(), last,
                       [&](const Release& each) { return hasLoaded(pid, each.library); });
}

qint64 processOf(const DesktopWindow& window) {
  return window.pid != 0 ? window.pid : BusPeer(kService).process();
}

/// An existing file that is no picture: the desktop shows its colour then.
const QString kNoPicture = QStringLiteral("/dev/null");

QString fileIn(const Dictionary& state, const char* key, const QString& otherwise) {
  const auto file = platform::valueOf<std::string>(state, key);
  return file ? QFile::decodeName(QByteArray::fromStdString(*file)) : otherwise;
}

QByteArray withoutPicture(const QByteArray& text) {
  return withIniValue(text, kSection, kPicture, std::nullopt);
}

struct Settings {
  QString picture;
  BackdropStyle style = BackdropStyle::None;
  QColor colour;
  bool perMonitor = false;
  bool upright = false;
  bool slideShow = false;
};

class PcManFmQtWallpaper final : public WallpaperAdapter {
 public:
  PcManFmQtWallpaper(const WallpaperSurroundings& surroundings, qint64 process)
      : hasWindowPerMonitor_(surroundings.window.id == 0),
        roundingOnEach_(releaseOf(process).onEach),
        name_(QStringLiteral("pcmanfm-qt/%1/settings.conf").arg(profileIn(commandLineOf(process)))),
        file_(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
              QLatin1Char('/') + name_),
        orders_([this](const auto& order, const auto& reason) { answered(order, reason); }) {}

  ~PcManFmQtWallpaper() override {
    const auto* order = orders_.last();
    if (order != nullptr && order->state) putBackFile(*order->state);
  }

  std::optional<Backdrop> backdrop(const Monitor& /*monitor*/) override {
    return backdropOf(read());
  }

  std::optional<WallpaperState> state(const Monitor& /*monitor*/) override {
    const Settings settings = read();
    const Backdrop shown = backdropOf(settings);
    const QString file = settings.slideShow ? QString() : shown.file;
    const auto* order = orders_.last();
    if (order != nullptr && order->state) return WallpaperState{*order->state, file};
    const std::string named = QFile::encodeName(settings.picture).toStdString();
    Dictionary kept{{kNamed, named}};
    if (!shown.file.isEmpty() && QFileInfo::exists(shown.file)) kept.emplace(kFile, named);
    if (order != nullptr) {
      kept.emplace(kUnwritten, true);
    } else if (const auto contents = iniText(file_)) {
      kept.emplace(kContents, contents->toStdString());
    }
    return WallpaperState{std::move(kept), file};
  }

  Fault show(const Monitor& /*monitor*/, const QString& file,
             const Dictionary& /*options*/) override {
    const bool coloursOnly = read().style == BackdropStyle::None;
    // pcmanfm-qt 1.2 keeps a mode that it was told for its windows, but does not save it.
    if (coloursOnly) inspiteOfMode_ = file;
    orders_.give({file, coloursOnly ? QStringLiteral("stretch") : QString(), std::nullopt});
    return std::nullopt;
  }

  Fault restore(const Monitor& /*monitor*/, const Dictionary& kept) override {
    const QString file = fileIn(kept, kFile, kNoPicture);
    if (file != inspiteOfMode_) inspiteOfMode_.clear();
    orders_.give({file, {}, kept});
    return std::nullopt;
  }

  void setChanged(std::function<void()> changed) override {
    changed_ = changed;
    watch_.reset();
    if (changed) watch_ = std::make_unique<FileWatch>(QStringList{file_}, std::move(changed));
  }

  [[nodiscard]] BackdropManner manner() const override {
    const Settings settings = read();
    const bool isOnEach = settings.perMonitor && !hasWindowPerMonitor_;
    return {.rounding = isOnEach ? roundingOnEach_ : SizeRounding::Down,
            .turnsUpright = settings.upright,
            .tilesFromDesktopOrigin = !hasWindowPerMonitor_};
  }

 private:
  [[nodiscard]] Settings read() const {
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
    if (const auto* order = orders_.last()) {
      settings.picture = order->state ? fileIn(*order->state, kNamed, {}) : order->file;
    }
    settings.style = styleNamed(value("WallpaperMode").toString().toStdString(), kStyles).style;
    settings.colour = QColor(value("BgColor", QStringLiteral("#000000")).toString());
    settings.perMonitor = value("PerScreenWallpaper").toBool();
    settings.upright = value("TransformWallpaper").toBool();
    settings.slideShow =
        value("SlideShowInterval").toInt() > 0 && !value("WallpaperDirectory").toString().isEmpty();
    return settings;
  }

  [[nodiscard]] Backdrop backdropOf(const Settings& settings) const {
    Backdrop backdrop;
    backdrop.primary = backdrop.secondary = settings.colour;
    backdrop.style = settings.style;
    if (!inspiteOfMode_.isEmpty() && inspiteOfMode_ == settings.picture) {
      backdrop.style = BackdropStyle::Stretched;
    }
    if (backdrop.style == BackdropStyle::None) return backdrop;
    backdrop.file = settings.picture;
    backdrop.spansMonitors = !settings.perMonitor && !hasWindowPerMonitor_;
    // The colour is then seen only without a picture.
    if (hasWindowPerMonitor_) backdrop.primary = backdrop.secondary = Qt::black;
    return backdrop;
  }

  void answered(const PcManFmQtOrders::Order& order, const Fault& reason) {
    if (reason) {
      qCWarning(lcWallpaper).noquote()
          << "pcmanfm-qt does not take" << order.file << "-" << QString::fromStdString(*reason);
    }
    // Also where the desktop has ended meanwhile: it may have written its file before, and the next
    // one starts with it.
    if (order.state) {
      putBackFile(*order.state);
    } else if (const auto text = iniText(file_)) {
      ours_ = withoutPicture(*text);
    }
    if (reason && changed_) changed_();
  }

  /// Gives the file the contents that a state tells of.
  void putBackFile(const Dictionary& state) const {
    if (platform::valueOf<bool>(state, kUnwritten).value_or(false)) return;
    const auto contents = platform::valueOf<std::string>(state, kContents);
    const auto reason =
        putBackFile(contents ? std::optional(QByteArray::fromStdString(*contents)) : std::nullopt);
    if (reason) qCWarning(lcWallpaper, "%s", reason->c_str());
  }

  [[nodiscard]] Fault putBackFile(const std::optional<QByteArray>& old) const {
    const auto present = iniText(file_);
    if (!present) return putIniText(file_, old);
    const QByteArray rest = withoutPicture(*present);
    if (rest == ours_ || (old && rest == withoutPicture(*old))) return putIniText(file_, old);
    // Somebody has changed other settings since; they stay.
    const auto picture = old ? iniValue(*old, kSection, kPicture) : std::nullopt;
    return putIniText(file_, withIniValue(*present, kSection, kPicture, picture));
  }

  /// Where nobody sees its windows each monitor has one of its own; else one spans them all.
  bool hasWindowPerMonitor_;
  SizeRounding roundingOnEach_;
  QString name_;  ///< of the settings file, below a configuration folder
  QString file_;
  PcManFmQtOrders orders_;
  /// What the file holds, beside the picture, since we had a picture shown.
  std::optional<QByteArray> ours_;
  /// The picture that is shown although the settings say colours only.
  QString inspiteOfMode_;
  std::function<void()> changed_;
  std::unique_ptr<FileWatch> watch_;
};

}  // namespace

std::shared_ptr<WallpaperAdapter> pcManFmQtWallpaper(const WallpaperSurroundings& surroundings) {
  return std::make_shared<PcManFmQtWallpaper>(surroundings, processOf(surroundings.window));
}

bool hasPcManFmQtDesktop() {
  BusPeer peer(kService);
  // Most are started for it, and then also one that hangs is known.
  if (commandLineOf(peer.process()).contains("--desktop")) return true;
  const QDBusPendingReply<QDBusVariant> enabled = peer.call(
      peer.method(kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                  {kInterface, QStringLiteral("desktopManagerEnabled")}));
  return !enabled.isError() && enabled.value().variant().toBool();
}

}  // namespace linux_desktop
