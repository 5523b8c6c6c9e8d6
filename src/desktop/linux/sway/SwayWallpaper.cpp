#include "desktop/linux/sway/SwayWallpaper.h"

#include <QFile>
#include <QJsonArray>
#include <cctype>
#include <chrono>
#include <utility>

namespace linux_desktop {
namespace {

using platform::Dictionary;

constexpr std::chrono::seconds kStart{2};

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
std::optional<std::string> faultIn(const QJsonDocument& answer) {
  if (answer.isNull()) return "sway does not answer.";
  for (const QJsonValue each : answer.array()) {
    if (each[QLatin1String("success")].toBool()) continue;
    return "sway does not take the picture: " +
           each[QLatin1String("error")].toString().simplified().toStdString();
  }
  return std::nullopt;
}

}  // namespace

std::optional<SwaybgTold> SwayWallpaper::shownOn(const QString& output) {
  const auto running = SwaybgTable::on(output);
  const auto told = told_.find(output);
  if (told != told_.end()) {
    const bool isShown = running && running->told == told->second.row;
    if (!isShown && !told->second.until.hasExpired()) return told->second.row;
    told_.erase(told);
  }
  return running && running->isCompositors ? std::optional(running->told) : std::nullopt;
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
  return tell(monitor.name, {file, isSeen ? shown->mode : QByteArray("fill"), shown->colour});
}

std::optional<std::string> SwayWallpaper::restore(const Monitor& monitor, const Dictionary& kept) {
  if (!kept.contains(kImage)) return otherwise_->restore(monitor, kept);
  const auto text = [&](const char* key) {
    return QByteArray::fromStdString(platform::valueOf<std::string>(kept, key).value_or(""));
  };
  return tell(monitor.name, {QString::fromUtf8(text(kImage)), text(kMode), text(kColour)});
}

std::optional<std::string> SwayWallpaper::tell(const QString& output, const SwaybgTold& row) {
  auto fault = faultIn(sway_.call(SwaySocket::Question::Command, commandFor(output, row)));
  if (!fault) told_.insert_or_assign(output, Told{row, QDeadlineTimer(kStart)});
  return fault;
}

void SwayWallpaper::setChanged(std::function<void()> changed) {
  otherwise_->setChanged(changed);
  table_.setChanged(std::move(changed));
}

}  // namespace linux_desktop
