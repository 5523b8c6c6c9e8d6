#include "desktop/linux/files/SettingsText.h"

#include <QFile>

#include "desktop/linux/files/WholeFile.h"

namespace linux_desktop {
namespace {

bool isSection(const QByteArray& line) {
  return line.trimmed().startsWith('[');
}

bool isKey(const QByteArray& line, const QByteArray& key) {
  const auto equals = line.indexOf('=');
  return equals > 0 && line.first(equals).trimmed() == key;
}

/// The lines of a section without its title; none where there is no such section.
struct Lines {
  qsizetype begin = -1;
  qsizetype end = -1;
};

Lines linesOf(const QByteArrayList& lines, const QByteArray& section) {
  const QByteArray title = '[' + section + ']';
  Lines found;
  for (qsizetype i = 0; i < lines.size() && found.end < 0; ++i) {
    if (found.begin < 0) {
      if (lines[i].trimmed() == title) found.begin = i + 1;
    } else if (isSection(lines[i])) {
      found.end = i;
    }
  }
  if (found.begin >= 0 && found.end < 0) found.end = lines.size();
  return found;
}

qsizetype lineOf(const QByteArrayList& lines, const Lines& section, const QByteArray& key) {
  for (qsizetype i = section.begin; i >= 0 && i < section.end; ++i) {
    if (isKey(lines[i], key)) return i;
  }
  return -1;
}

}  // namespace

std::optional<QByteArray> settingsText(const QString& file) {
  QFile stored(file);
  if (!stored.open(QIODevice::ReadOnly)) return std::nullopt;
  return stored.readAll();
}

std::optional<std::string> putSettingsText(const QString& file,
                                           const std::optional<QByteArray>& text) {
  if (settingsText(file) == text) return std::nullopt;
  if (!text) {
    QFile stored(file);
    return stored.remove() ? std::nullopt : std::optional(stored.errorString().toStdString());
  }
  const auto error = replaceWhole(file.toStdString(), *text);
  return error ? std::optional(file.toStdString() + ": " + error->reason) : std::nullopt;
}

std::optional<QByteArray> writtenValue(const QByteArray& text, const QByteArray& section,
                                       const QByteArray& key) {
  const QByteArrayList lines = text.split('\n');
  const auto line = lineOf(lines, linesOf(lines, section), key);
  if (line < 0) return std::nullopt;
  return lines[line].mid(lines[line].indexOf('=') + 1).trimmed();
}

QByteArray withValue(const QByteArray& text, const QByteArray& section, const QByteArray& key,
                     const std::optional<QByteArray>& value) {
  QByteArrayList lines = text.split('\n');
  Lines place = linesOf(lines, section);
  const auto line = lineOf(lines, place, key);
  if (line >= 0 && value) {
    lines[line] = key + '=' + *value;
  } else if (line >= 0) {
    lines.removeAt(line);
  } else if (value) {
    if (place.begin < 0) {
      lines.prepend('[' + section + ']');
      place.begin = 1;
    }
    lines.insert(place.begin, key + '=' + *value);
  }
  return lines.join('\n');
}

}  // namespace linux_desktop
