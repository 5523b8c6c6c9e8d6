#include "desktop/linux/wallpaper/DesktopWallpapers.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <chrono>

#include "desktop/linux/files/IniFile.h"
#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/log/Log.h"
#include "desktop/linux/loop/OneShot.h"
#include "desktop/linux/wallpaper/PcManFmRestart.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kSection = "*";
constexpr const char* kPicture = "wallpaper";
constexpr const char* kMode = "wallpaper_mode";
constexpr const char* kOneForAllWorkspaces = "wallpaper_common";
/// Of the file that counts, and whether that is the system's because the user has none.
constexpr const char* kContents = "contents";
constexpr const char* kInherited = "inherited";
constexpr const char* kName = "name";

constexpr BackdropStyleName kStyles[] = {
    {"stretch", BackdropStyle::Stretched}, {"fit", BackdropStyle::Fitted},
    {"center", BackdropStyle::Centered},   {"tile", BackdropStyle::Tiled},
    {"crop", BackdropStyle::Zoomed},       {"screen", BackdropStyle::Stretched, true},
};

QByteArray valueIn(const QByteArray& text, const char* key) {
  return iniValue(text, kSection, key).value_or(QByteArray());
}

QString fileIn(const QByteArray& text) {
  return QFile::decodeName(valueIn(text, kPicture));
}

BackdropStyleName styleIn(const QByteArray& text) {
  return styleNamed(valueIn(text, kMode).toStdString(), kStyles);
}

bool showsColoursOnly(const QByteArray& text) {
  return styleIn(text).style == BackdropStyle::None;
}

QStringList orderOf(const QByteArray& text) {
  QStringList order{QStringLiteral("--wallpaper-mode"), QString::fromLatin1(valueIn(text, kMode))};
  if (!showsColoursOnly(text)) {
    order += {QStringLiteral("--set-wallpaper"), fileIn(text)};
  }
  return order;
}

Dictionary optionsIn(const QByteArray& text) {
  const auto mode = iniValue(text, kSection, kMode);
  return mode ? Dictionary{{kMode, mode->toStdString()}} : Dictionary();
}

std::optional<QByteArray> modeIn(const Dictionary& options) {
  const auto mode = platform::valueOf<std::string>(options, kMode);
  return mode ? std::optional(QByteArray::fromStdString(*mode)) : std::nullopt;
}

Backdrop backdropIn(const QByteArray& text) {
  Backdrop backdrop;
  const QColor colour(QString::fromLatin1(valueIn(text, "desktop_bg")));
  backdrop.primary = backdrop.secondary = colour.isValid() ? colour : QColor(Qt::black);
  const QString file = fileIn(text);
  const BackdropStyleName row = styleIn(text);
  if (row.style == BackdropStyle::None || file.isEmpty()) return backdrop;
  backdrop.file = file;
  backdrop.style = row.style;
  backdrop.spansMonitors = row.spans;
  return backdrop;
}

/// With the section, and without what `show` writes into it.
QByteArray restOf(const QByteArray& text) {
  QByteArray rest = withIniValue(text, kSection, kPicture, QByteArray());
  for (const char* key : {kPicture, kMode, kOneForAllWorkspaces}) {
    rest = withIniValue(rest, kSection, key, std::nullopt);
  }
  return rest;
}

/// What a file that now holds `present` is to hold again.
std::optional<QByteArray> restored(const std::optional<QByteArray>& present,
                                   const Dictionary& kept) {
  const auto contents = platform::valueOf<std::string>(kept, kContents).value_or(std::string());
  const QByteArray old = QByteArray::fromStdString(contents);
  QByteArray text = old;
  if (present && restOf(*present) != restOf(old)) {
    // The user has changed other settings since; they stay.
    text = *present;
    for (const char* key : {kPicture, kMode, kOneForAllWorkspaces}) {
      text = withIniValue(text, kSection, key, iniValue(old, kSection, key));
    }
  }
  const auto mode = modeIn(kept);
  if (mode != iniValue(old, kSection, kMode)) text = withIniValue(text, kSection, kMode, mode);
  const bool isInherited = platform::valueOf<bool>(kept, kInherited).value_or(false);
  return isInherited && text == old ? std::nullopt : std::optional(text);
}

/// pcmanfm 1.3 saves about a second after an order.
constexpr std::chrono::seconds kSavedBy{3};

class PcManFmWallpaper final : public WallpaperAdapter {
 public:
  explicit PcManFmWallpaper(const WallpaperSurroundings& surroundings)
      : facts_(surroundings.facts) {
    PcManFmRestart::instance().found(surroundings.window.pid);
    profile_ = profileIn(PcManFmRestart::instance().commandLine());
  }

  std::optional<Backdrop> backdrop(const Monitor& monitor) override {
    const auto name = nameOf(monitor);
    return name ? std::optional(backdropIn(textInForce(*name))) : std::nullopt;
  }

  std::optional<WallpaperState> state(const Monitor& monitor) override {
    const auto name = nameOf(monitor);
    if (!name) return std::nullopt;
    const QByteArray text = textInForce(*name);
    Dictionary kept = optionsIn(text);
    kept.emplace(kName, name->toStdString());
    kept.emplace(kContents, text.toStdString());
    if (!QFileInfo::exists(pathOf(*name))) kept.emplace(kInherited, true);
    return WallpaperState{std::move(kept), backdropIn(text).file};
  }

  std::optional<Dictionary> options(const Monitor& monitor) override {
    const auto name = nameOf(monitor);
    return name ? std::optional(optionsIn(textInForce(*name))) : std::nullopt;
  }

  Fault show(const Monitor& monitor, const QString& file, const Dictionary& options) override {
    const auto name = nameOf(monitor);
    if (!name) return "pcmanfm does not know this screen.";
    // pcmanfm 1.3 saves it as it is and does not find it again.
    if (file.contains(QLatin1Char('\\'))) return "pcmanfm takes no file name with a backslash.";
    QByteArray text = textInForce(*name);
    if (const auto mode = modeIn(options)) text = withIniValue(text, kSection, kMode, mode);
    if (showsColoursOnly(text)) text = withIniValue(text, kSection, kMode, "crop");
    text = withIniValue(text, kSection, kPicture, QFile::encodeName(file));
    text = withIniValue(text, kSection, kOneForAllWorkspaces, "1");
    return apply(pathOf(*name), text);
  }

  Fault restore(const Monitor& /*monitor*/, const Dictionary& kept) override {
    const auto name = platform::valueOf<std::string>(kept, kName);
    if (!name) return "That was not told by this desktop.";
    const QString path = pathOf(QString::fromStdString(*name));
    return apply(path, restored(iniText(path), kept));
  }

  void setChanged(std::function<void()> changed) override {
    watch_.reset();
    if (!changed) return;
    QStringList files;
    for (const Monitor& monitor : facts_.monitors()) {
      if (const auto name = nameOf(monitor)) files.push_back(pathOf(*name));
    }
    watch_ = std::make_unique<FileWatch>(files, std::move(changed));
  }

  [[nodiscard]] BackdropManner manner() const override {
    return {.rounding = SizeRounding::DownInFloat};
  }

 private:
  /// Of the monitor's settings; none for a monitor that pcmanfm does not have.
  [[nodiscard]] std::optional<QString> nameOf(const Monitor& monitor) const {
    // GTK 2, and so pcmanfm, counts them like this, from 0.
    const std::vector<QString> outputs = facts_.outputsInUse();
    const auto found = std::ranges::find(outputs, monitor.name);
    if (found == outputs.end()) return std::nullopt;
    return QStringLiteral("pcmanfm/%1/desktop-items-%2.conf")
        .arg(profile_)
        .arg(found - outputs.begin());
  }

  [[nodiscard]] QString pathOf(const QString& name) const {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QLatin1Char('/') + name;
  }

  /// The user's settings, or the system's where the user has none.
  [[nodiscard]] static QByteArray textInForce(const QString& name) {
    const QString stored = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, name);
    return iniText(stored).value_or(QByteArray());
  }

  /// What the monitor is to show from now on.
  [[nodiscard]] Fault apply(const QString& path, const std::optional<QByteArray>& text) {
    const auto before = iniText(path);
    if (before == text) return std::nullopt;
    if (auto reason = putIniText(path, text)) return reason;
    const bool ordered = followsOrders(before, text);
    auto reason = ordered
                      ? tellPcManFm(orderOf(*text), savingEnds_, [this] { savingEnds_.start(); })
                      : PcManFmRestart::instance().begin();
    if (reason) {
      static_cast<void>(putIniText(path, before));
    } else if (ordered) {
      keepAgainstSaving(path, *text);
    } else {
      saving_.reset();
      PcManFmRestart::instance().keep(path, text);
    }
    return reason;
  }

  /// Whether an order to the running program has the same effect as a new start.
  [[nodiscard]] bool followsOrders(const std::optional<QByteArray>& before,
                                   const std::optional<QByteArray>& text) const {
    const bool simple = before && text && facts_.monitors().size() == 1;
    if (!simple || PcManFmRestart::instance().isUnderWay()) return false;
    const auto isCommon = [](const QByteArray& each) {
      return valueIn(each, kOneForAllWorkspaces) != "0";
    };
    // pcmanfm 1.3 aborts when it is sent a character outside ASCII.
    const QByteArray file = valueIn(*text, kPicture);
    const bool isPlain = std::ranges::all_of(file, [](char c) { return c >= ' ' && c <= '~'; });
    return isPlain && isCommon(*before) && isCommon(*text) &&
           (showsColoursOnly(*text) || QFileInfo::exists(fileIn(*text)));
  }

  /// The program saves its settings some time after an order, in its own words.
  void keepAgainstSaving(const QString& path, const QByteArray& text) {
    const auto keep = [path, text] {
      // Not what the user changes meanwhile.
      const QByteArray present = iniText(path).value_or(text);
      if (iniValue(present, kSection, kMode) != iniValue(text, kSection, kMode)) return;
      if (const auto reason = putIniText(path, text)) qCWarning(lcWallpaper, "%s", reason->c_str());
    };
    saving_ = std::make_unique<FileWatch>(QStringList{path}, keep);
    savingEnds_.stop();  // until the order is read, however late
  }

  DesktopFacts& facts_;
  QString profile_;
  std::unique_ptr<FileWatch> watch_;
  std::unique_ptr<FileWatch> saving_;
  OneShot savingEnds_{kSavedBy, [this] { saving_.reset(); }};
};

}  // namespace

std::shared_ptr<WallpaperAdapter> pcManFmWallpaper(const WallpaperSurroundings& surroundings) {
  return std::make_shared<PcManFmWallpaper>(surroundings);
}

bool runsPcManFm(const WallpaperSurroundings& surroundings) {
  return surroundings.window.windowClass == QLatin1String("Pcmanfm") ||
         PcManFmRestart::instance().isUnderWay();
}

}  // namespace linux_desktop
