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
Fault faultIn(const std::optional<QJsonDocument>& answer) {
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
  for (const auto each : outputs) {
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
    if (isStarting(told->second, running)) return told->second.row;
  }
  if (!running || !running->isCompositors) return std::nullopt;
  // Else sway has not told them in time.
  if (names.size() > 1)
    names_.insert_or_assign(output, names.contains(running->output) ? running->output : output);
  Told& last = told_[output];
  // What follows a reload is ours again.
  if (!last.isOurs) last.row = running->told;
  return running->told;
}

/// Whether sway is yet to show what it was told, by one that it is starting.
bool SwayWallpaper::isStarting(const Told& told, const std::optional<RunningSwaybg>& running) {
  if (!running) return processTimeNow() < told.until + processTimeOf(kStart);
  return running->told != told.row && running->started <= told.until;
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

std::optional<Dictionary> SwayWallpaper::options(const Monitor& monitor) {
  const auto shown = shownOn(monitor.name);
  if (!shown) return otherwise_->options(monitor);
  return Dictionary{{kMode, shown->mode.toStdString()}};
}

Fault SwayWallpaper::show(const Monitor& monitor, const QString& file, const Dictionary& options) {
  const auto shown = shownOn(monitor.name);
  if (!shown) return otherwise_->show(monitor, file, options);
  SwaybgTold wanted{file, shown->mode, shown->colour};
  if (const auto mode = platform::valueOf<std::string>(options, kMode)) wanted.mode = mode->c_str();
  if (wanted.mode.isEmpty() || wanted.backdrop().style == BackdropStyle::None) wanted.mode = "fill";
  return tell(monitor.name, wanted, true);
}

Fault SwayWallpaper::restore(const Monitor& monitor, const Dictionary& kept) {
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

Fault SwayWallpaper::tell(const QString& output, const SwaybgTold& row, bool isOurs) {
  const QByteArray command = commandFor(nameFor(output), row);
  const auto answer = sway_.carryOut(command);
  auto fault = faultIn(answer);
  if (fault) return fault;
  told_.insert_or_assign(output, Told{.row = row, .isOurs = isOurs});
  // One swaybg shows the pictures of all; it runs when sway answers, be it in time.
  const ProcessTime until = processTimeNow() + (answer ? 0 : processTimeOf(kStart));
  for (auto& [each, told] : told_) told.until = until;
  return std::nullopt;
}

void SwayWallpaper::tellAnew() {
  for (auto& [output, told] : told_) {
    if (told.isOurs) static_cast<void>(tell(output, told.row, true));
  }
}

void SwayWallpaper::setChanged(std::function<void()> changed) {
  otherwise_->setChanged(changed);
  table_.setChanged(std::move(changed));
}

}  // namespace linux_desktop
