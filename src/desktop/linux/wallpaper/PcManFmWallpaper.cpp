#include "desktop/linux/wallpaper/PcManFmWallpaper.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <chrono>

#include "desktop/linux/wallpaper/DesktopProcess.h"
#include "desktop/linux/wallpaper/PcManFmMonitors.h"
#include "desktop/linux/wallpaper/PcManFmRestart.h"
#include "desktop/linux/wallpaper/PcManFmSocket.h"
#include "desktop/linux/wallpaper/SettingsText.h"
#include "desktop/linux/wallpaper/WallpaperLog.h"

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr const char* kSection = "*";
constexpr const char* kPicture = "wallpaper";
constexpr const char* kMode = "wallpaper_mode";
constexpr const char* kOneForAllWorkspaces = "wallpaper_common";
constexpr const char* kColoursOnly = "color";
constexpr const char* kContents = "contents";
constexpr const char* kName = "name";

struct StyleRow {
  const char* name;
  BackdropStyle style;
  bool spans = false;
};
constexpr StyleRow kStyles[] = {
    {kColoursOnly, BackdropStyle::None},
    {"stretch", BackdropStyle::Stretched},
    {"fit", BackdropStyle::Fitted},
    {"center", BackdropStyle::Centered},
    {"tile", BackdropStyle::Tiled},
    {"crop", BackdropStyle::Zoomed},
    {"screen", BackdropStyle::Stretched, true},
};

const StyleRow& styleNamed(const QByteArray& name) {
  const auto* row =
      std::ranges::find_if(kStyles, [&](const auto& each) { return name == each.name; });
  return row == std::end(kStyles) ? kStyles[0] : *row;
}

QByteArray valueIn(const QByteArray& text, const char* key) {
  return writtenValue(text, kSection, key).value_or(QByteArray());
}

QString fileIn(const QByteArray& text) {
  return QFile::decodeName(valueIn(text, kPicture));
}

bool showsColoursOnly(const QByteArray& text) {
  return styleNamed(valueIn(text, kMode)).style == BackdropStyle::None;
}

QStringList orderOf(const QByteArray& text) {
  QStringList order{QStringLiteral("--wallpaper-mode"), QString::fromLatin1(valueIn(text, kMode))};
  if (!showsColoursOnly(text)) {
    order += {QStringLiteral("--set-wallpaper"), fileIn(text)};
  }
  return order;
}

/// pcmanfm 1.3 saves about a second after an order.
constexpr std::chrono::seconds kSavedBy{3};

}  // namespace

bool PcManFmWallpaper::runs(const WallpaperSurroundings& surroundings) {
  return surroundings.x11 != nullptr &&
         (surroundings.desktop.windowClass == QLatin1String("Pcmanfm") ||
          PcManFmRestart::instance().isUnderWay());
}

PcManFmWallpaper::PcManFmWallpaper(const WallpaperSurroundings& surroundings)
    : surroundings_(surroundings) {
  PcManFmRestart::instance().found(surroundings.desktop.pid);
  profile_ = profileIn(PcManFmRestart::instance().commandLine());
  savingEnds_.setSingleShot(true);
  savingEnds_.setInterval(kSavedBy);
  QObject::connect(&savingEnds_, &QTimer::timeout, &savingEnds_, [this] { saving_.reset(); });
}

std::optional<QString> PcManFmWallpaper::nameOf(const Monitor& monitor) const {
  const std::vector<QString> outputs = outputsInUse(surroundings_.x11->server());
  const auto found = std::ranges::find(outputs, monitor.name);
  if (found == outputs.end()) return std::nullopt;
  return QStringLiteral("pcmanfm/%1/desktop-items-%2.conf")
      .arg(profile_)
      .arg(found - outputs.begin());
}

QString PcManFmWallpaper::pathOf(const QString& name) const {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QLatin1Char('/') + name;
}

std::optional<Backdrop> PcManFmWallpaper::backdrop(const Monitor& monitor) {
  const auto name = nameOf(monitor);
  if (!name) return std::nullopt;
  const QString stored = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, *name);
  const QByteArray text = settingsText(stored).value_or(QByteArray());
  Backdrop backdrop;
  const QColor colour(QString::fromLatin1(valueIn(text, "desktop_bg")));
  backdrop.primary = backdrop.secondary = colour.isValid() ? colour : QColor(Qt::black);
  const StyleRow row = styleNamed(valueIn(text, kMode));
  backdrop.file = fileIn(text);
  if (row.style == BackdropStyle::None || backdrop.file.isEmpty()) {
    backdrop.file.clear();
    return backdrop;
  }
  backdrop.style = row.style;
  backdrop.spansMonitors = row.spans;
  return backdrop;
}

std::optional<Dictionary> PcManFmWallpaper::state(const Monitor& monitor) {
  const auto name = nameOf(monitor);
  if (!name) return std::nullopt;
  Dictionary state{{kName, name->toStdString()}};
  if (const auto contents = settingsText(pathOf(*name))) {
    state.emplace(kContents, contents->toStdString());
  }
  return state;
}

std::optional<std::string> PcManFmWallpaper::show(const Monitor& monitor, const QString& file) {
  const auto name = nameOf(monitor);
  if (!name) return "pcmanfm does not know this screen.";
  // pcmanfm 1.3 saves it as it is and does not find it again.
  if (file.contains(QLatin1Char('\\'))) return "pcmanfm takes no file name with a backslash.";
  const QString stored = QStandardPaths::locate(QStandardPaths::GenericConfigLocation, *name);
  QByteArray text = settingsText(stored).value_or(QByteArray());
  if (showsColoursOnly(text)) text = withValue(text, kSection, kMode, "crop");
  text = withValue(text, kSection, kPicture, QFile::encodeName(file));
  text = withValue(text, kSection, kOneForAllWorkspaces, "1");
  return apply(pathOf(*name), text);
}

std::optional<std::string> PcManFmWallpaper::restore(const Monitor& /*monitor*/,
                                                     const Dictionary& state) {
  const auto name = platform::valueOf<std::string>(state, kName);
  if (!name) return "That was not told by this desktop.";
  const auto contents = platform::valueOf<std::string>(state, kContents);
  return apply(pathOf(QString::fromStdString(*name)),
               contents ? std::optional(QByteArray::fromStdString(*contents)) : std::nullopt);
}

std::optional<std::string> PcManFmWallpaper::apply(const QString& path,
                                                   const std::optional<QByteArray>& text) {
  const auto before = settingsText(path);
  if (before == text) return std::nullopt;
  if (auto reason = putSettingsText(path, text)) return reason;
  const bool ordered = followsOrders(before, text);
  auto reason = ordered ? tellPcManFm(orderOf(*text)) : PcManFmRestart::instance().begin();
  if (reason) {
    static_cast<void>(putSettingsText(path, before));
  } else if (ordered) {
    keepAgainstSaving(path, *text);
  } else {
    saving_.reset();
    PcManFmRestart::instance().keep(path, text);
  }
  return reason;
}

bool PcManFmWallpaper::followsOrders(const std::optional<QByteArray>& before,
                                     const std::optional<QByteArray>& text) const {
  const bool simple = before && text && surroundings_.monitors().size() == 1;
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

void PcManFmWallpaper::keepAgainstSaving(const QString& path, const QByteArray& text) {
  const auto keep = [path, text] {
    if (const auto reason = putSettingsText(path, text))
      qCWarning(lcWallpaper, "%s", reason->c_str());
  };
  saving_ = std::make_unique<FileWatch>(QStringList{path}, keep);
  savingEnds_.start();
}

void PcManFmWallpaper::setChanged(std::function<void()> changed) {
  watch_.reset();
  if (!changed) return;
  QStringList files;
  for (const Monitor& monitor : surroundings_.monitors()) {
    if (const auto name = nameOf(monitor)) files.push_back(pathOf(*name));
  }
  watch_ = std::make_unique<FileWatch>(files, std::move(changed));
}

}  // namespace linux_desktop
