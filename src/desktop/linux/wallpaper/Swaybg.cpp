#include "desktop/linux/wallpaper/Swaybg.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

constexpr std::chrono::milliseconds kSettling{300};

constexpr BackdropStyleName kModes[] = {
    {"fill", BackdropStyle::Zoomed},
    {"fit", BackdropStyle::Fitted},
    {"center", BackdropStyle::Centered},
    {"tile", BackdropStyle::Tiled},
};

/// "#rrggbb" or "rrggbb", either with an opacity behind it that is not used here.
QColor colourOf(const QByteArray& text) {
  constexpr qsizetype kDigits = 6;
  const QByteArray digits = text.startsWith('#') ? text.mid(1) : text;
  return QColor('#' + QString::fromLatin1(digits.first(std::min(digits.size(), kDigits))));
}

/// For one output, or "*" for all that are not named.
struct Row {
  QByteArray output;
  QByteArray image = {};
  QByteArray mode = {};
  QByteArray colour = {};

  void take(char option, const QByteArray& value) {
    if (option == 'i') image = value;
    if (option == 'm') mode = value;
    if (option == 'c') colour = value;
  }
};

std::vector<Row> rowsIn(const QByteArrayList& commandLine) {
  std::vector<Row> rows{{"*"}};
  std::size_t present = 0;
  for (const auto& [option, value] : optionsIn(commandLine, {"color", "image", "mode", "output"})) {
    rows[present].take(option, value);
    if (option != 'o') continue;
    const auto known = std::ranges::find(rows, value, &Row::output);
    present = static_cast<std::size_t>(known - rows.begin());
    if (known == rows.end()) rows.push_back({value});
  }
  std::erase_if(rows, [](const Row& row) { return row.image.isEmpty() && row.colour.isEmpty(); });
  return rows;
}

}  // namespace

Backdrop SwaybgTold::backdrop() const {
  Backdrop backdrop;
  if (const QColor given = colourOf(colour); given.isValid()) backdrop.primary = given;
  if (image.isEmpty() || mode == "solid_color") return backdrop;
  backdrop.style = styleNamed(mode.toStdString(), kModes).style;
  if (backdrop.style == BackdropStyle::None) backdrop.style = BackdropStyle::Stretched;
  backdrop.file = image;
  return backdrop;
}

namespace {

/// What a command line tells for an output. None where it shows nothing there. `folder` is where
/// the program was started.
std::optional<RunningSwaybg> toldBy(const QByteArrayList& commandLine, const QString& folder,
                                    const QStringList& names) {
  const std::vector<Row> rows = rowsIn(commandLine);
  for (const QString& name : names + QStringList(QStringLiteral("*"))) {
    const auto row = std::ranges::find(rows, name.toUtf8(), &Row::output);
    if (row == rows.end()) continue;
    const QString image = QFile::decodeName(row->image);
    const QString file = image.isEmpty() ? image : QDir(folder).absoluteFilePath(image);
    return RunningSwaybg{.told = {file, row->mode, row->colour}, .output = name};
  }
  return std::nullopt;
}

QByteArray valueIn(const QByteArrayList& environment, const QByteArray& name) {
  for (const QByteArray& entry : environment) {
    if (entry.startsWith(name + '=')) return entry.mid(name.size() + 1);
  }
  return {};
}

/// Where the compositor of an environment listens.
QByteArray socketIn(const QByteArray& folder, const QByteArray& display) {
  const QByteArray name = display.isEmpty() ? "wayland-0" : display;
  return name.startsWith('/') ? name : folder + '/' + name;
}

/// Those that show something to this session, in the order in which they were started.
std::vector<qint64> running() {
  constexpr const char* kFolder = "XDG_RUNTIME_DIR";
  constexpr const char* kDisplay = "WAYLAND_DISPLAY";
  const QByteArray ours = socketIn(qgetenv(kFolder), qgetenv(kDisplay));
  std::vector<qint64> pids = processesNamed("swaybg");
  std::erase_if(pids, [&](qint64 pid) {
    const QByteArrayList environment = environmentOf(pid);
    return socketIn(valueIn(environment, kFolder), valueIn(environment, kDisplay)) != ours;
  });
  return pids;
}

}  // namespace

SwaybgTable::SwaybgTable()
    : settling_(kSettling, [this] {
        watch();
        changed_();
      }) {}

std::optional<RunningSwaybg> SwaybgTable::on(const QStringList& names) {
  std::vector<qint64> lastFirst = running();
  std::ranges::reverse(lastFirst);
  for (const qint64 pid : lastFirst) {
    const QString folder = QFile::symLinkTarget(QStringLiteral("/proc/%1/cwd").arg(pid));
    auto told = toldBy(commandLineOf(pid), folder, names);
    if (!told) continue;
    // A compositor hands the connection over itself.
    told->isCompositors = !valueIn(environmentOf(pid), "WAYLAND_SOCKET").isEmpty();
    told->started = startOf(pid);
    return told;
  }
  return std::nullopt;
}

void SwaybgTable::setChanged(std::function<void()> changed) {
  changed_ = std::move(changed);
  settling_.stop();
  watch();
}

void SwaybgTable::watch() {
  end_.reset();
  if (changed_) end_ = std::make_unique<ProcessEnd>(running(), [this] { settling_.start(); });
}

}  // namespace linux_desktop
