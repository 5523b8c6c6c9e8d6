#include "desktop/linux/sway/SwayWallpaper.h"

#include <QFile>
#include <QJsonArray>
#include <cctype>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

using platform::Dictionary;

/// Generous: a machine may be busy, and what is told is what counts.
constexpr std::chrono::seconds kStart{10};

constexpr const char* kImage = "image";
constexpr const char* kMode = "mode";
constexpr const char* kColour = "colour";

/// As one word, of which sway takes the quotes away and gives the rest to a shell's rules.
QByteArray quoted(const QByteArray& path) {
  QByteArray word;
  for (const char each : path) {
    const auto byte = static_cast<unsigned char>(each);
    const bool isPlain = byte > 0x7f || std::isalnum(byte) != 0 || byte == '/' || byte == '.';
    if (!isPlain) word += '\\';
    word += each;
  }
  return '"' + word + '"';
}

QByteArray commandFor(const QString& output, const SwaybgTold& row) {
  const QByteArray start = "output \"" + output.toUtf8() + "\" bg ";
  if (row.image.isEmpty()) return start + row.colour + " solid_color";
  return start + quoted(QFile::encodeName(row.image)) + ' ' + row.mode + ' ' + row.colour;
}

/// Why sway refuses, in one line.
std::optional<std::string> faultIn(const std::optional<QJsonDocument>& answer) {
  if (!answer) return std::nullopt;
  if (answer->isNull()) return "sway is gone.";
  for (const QJsonValue each : answer->array()) {
    if (each[QLatin1String("success")].toBool()) continue;
    return "sway does not take the picture: " +
           each[QLatin1String("error")].toString().simplified().toStdString();
  }
  return std::nullopt;
}

}  // namespace

SwayWallpaper::SwayWallpaper(SwaySocket& sway, std::shared_ptr<WallpaperAdapter> otherwise)
    : sway_(sway), otherwise_(std::move(otherwise)) {
  sway_.listen(SwaySocket::Event::Workspace, [this](const QJsonObject& event) {
    if (event[QLatin1String("change")].toString() == QLatin1String("reload")) tellAnew();
  });
}

// A configuration may call a monitor by what it is, which goes before where it is plugged in.
QStringList SwayWallpaper::namesOf(const QString& output) {
  const QJsonArray outputs = sway_.call(SwaySocket::Question::Outputs).array();
  for (const QJsonValue& each : outputs) {
    if (each[QLatin1String("name")].toString() != output) continue;
    QStringList parts;
    for (const char* part : {"make", "model", "serial"})
      parts += each[QLatin1String(part)].toString();
    return {parts.join(QLatin1Char(' ')), output};
  }
  return {output};
}

std::optional<SwaybgTold> SwayWallpaper::shownOn(const QString& output) {
  const QStringList names = namesOf(output);
  const auto running = SwaybgTable::on(names);
  const auto told = told_.find(output);
  if (told != told_.end()) {
    const bool isShown = running && running->told == told->second.row;
    if (!isShown && !told->second.until.hasExpired()) return told->second.row;
    told->second.until = QDeadlineTimer();
  }
  if (!running || !running->isCompositors) return std::nullopt;
  // Else sway has not told them in time.
  if (names.size() > 1)
    names_.insert_or_assign(output, names.contains(running->output) ? running->output : output);
  Told& last = told_.try_emplace(output, Told{{}, QDeadlineTimer(), false}).first->second;
  if (!last.isOurs) last.row = running->told;
  return running->told;
}

std::optional<Backdrop> SwayWallpaper::backdrop(const Monitor& monitor) {
  const auto shown = shownOn(monitor.name);
  return shown ? std::optional(shown->backdrop()) : otherwise_->backdrop(monitor);
}

std::optional<WallpaperState> SwayWallpaper::state(const Monitor& monitor) {
  const auto shown = shownOn(monitor.name);
  if (!shown) return otherwise_->state(monitor);
  return WallpaperState{{{kImage, shown->image.toStdString()},
                         {kMode, shown->mode.toStdString()},
                         {kColour, shown->colour.toStdString()}},
                        shown->backdrop().file};
}

std::optional<std::string> SwayWallpaper::show(const Monitor& monitor, const QString& file,
                                               const Dictionary& options) {
  const auto shown = shownOn(monitor.name);
  if (!shown) return otherwise_->show(monitor, file, options);
  const bool isSeen = shown->backdrop().style != BackdropStyle::None;
  return tell(monitor.name, {file, isSeen ? shown->mode : QByteArray("fill"), shown->colour}, true);
}

std::optional<std::string> SwayWallpaper::restore(const Monitor& monitor, const Dictionary& kept) {
  if (!kept.contains(kImage)) return otherwise_->restore(monitor, kept);
  const auto text = [&](const char* key) {
    return QByteArray::fromStdString(platform::valueOf<std::string>(kept, key).value_or(""));
  };
  return tell(monitor.name, {QString::fromUtf8(text(kImage)), text(kMode), text(kColour)}, false);
}

QString SwayWallpaper::nameFor(const QString& output) const {
  const auto known = names_.find(output);
  return known == names_.end() ? output : known->second;
}

std::optional<std::string> SwayWallpaper::tell(const QString& output, const SwaybgTold& row,
                                               bool isOurs) {
  const QByteArray command = commandFor(nameFor(output), row);
  auto fault = faultIn(sway_.carryOut(command));
  if (fault) return fault;
  told_.insert_or_assign(output, Told{row, QDeadlineTimer(), isOurs});
  // One swaybg shows the pictures of all.
  for (auto& [each, told] : told_) told.until = QDeadlineTimer(kStart);
  return std::nullopt;
}

void SwayWallpaper::tellAnew() {
  for (auto& [output, told] : told_) {
    if (!told.isOurs) continue;
    sway_.command(commandFor(nameFor(output), told.row));
    told.until = QDeadlineTimer(kStart);
  }
}

void SwayWallpaper::setChanged(std::function<void()> changed) {
  otherwise_->setChanged(changed);
  table_.setChanged(std::move(changed));
}

}  // namespace linux_desktop
