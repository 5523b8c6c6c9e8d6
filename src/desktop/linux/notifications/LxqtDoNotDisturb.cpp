#include "desktop/linux/notifications/LxqtDoNotDisturb.h"

#include <QFile>
#include <QList>
#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <algorithm>
#include <iterator>

#include "desktop/linux/files/WholeFile.h"
#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

constexpr const char* kKey = "doNotDisturb";

/// The user's own first, then those of the system, as the daemon looks.
QStringList settingsFiles() {
  return QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation,
                                   "lxqt/notifications.conf");
}

QString ownSettingsFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         "/lxqt/notifications.conf";
}

/// None where there is a file that cannot be read; writing it anew would lose it.
std::optional<QByteArray> contentsOf(const QString& path) {
  QFile file(path);
  if (!file.exists()) return QByteArray();
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  return file.readAll();
}

bool startsGeneral(const QByteArray& line) {
  return line.trimmed().compare("[General]", Qt::CaseInsensitive) == 0;
}

QByteArray keyOf(const QByteArray& line) {
  const qsizetype equals = line.indexOf('=');
  return equals < 0 ? QByteArray() : line.left(equals).trimmed();
}

}  // namespace

QByteArray withGeneralEntry(const QByteArray& text, const QByteArray& key,
                            const QByteArray& value) {
  const QByteArray entry = key + '=' + value;
  QList<QByteArray> lines = text.split('\n');
  const auto header = std::ranges::find_if(lines, startsGeneral);
  if (header == lines.end()) return "[General]\n" + entry + (text.isEmpty() ? "\n" : "\n\n") + text;
  for (auto line = std::next(header); line != lines.end() && !line->startsWith('['); ++line) {
    if (keyOf(*line) != key) continue;
    *line = entry;
    return lines.join('\n');
  }
  lines.insert(std::next(header), entry);
  return lines.join('\n');
}

std::optional<bool> LxqtDoNotDisturb::isOn() {
  for (const QString& path : settingsFiles()) {
    const QSettings settings(path, QSettings::IniFormat);
    if (settings.contains(kKey)) return settings.value(kKey).toBool();
  }
  return false;
}

bool LxqtDoNotDisturb::set(bool on) {
  const QString path = ownSettingsFile();
  const std::optional<QByteArray> text = contentsOf(path);
  if (text) {
    const QByteArray changed = withGeneralEntry(*text, kKey, on ? "true" : "false");
    if (!replaceWhole(path.toStdString(), changed)) return true;
  }
  qCWarning(lcNotifications, "Do Not Disturb could not be switched: %s cannot be written",
            qPrintable(path));
  return false;
}

}  // namespace linux_desktop
