#include "desktop/linux/files/IniFile.h"

#include <QFile>

#include "desktop/linux/files/WholeFile.h"

namespace linux_desktop {
namespace {

bool isSection(const QByteArray& line) {
  return line.trimmed().startsWith('[');
}

/// Qt takes the one section for the other.
bool isTitle(const QByteArray& line, const QByteArray& section) {
  const QByteArray title = '[' + section + ']';
  const QByteArray written = line.trimmed();
  return written == title ||
         (title == "[General]" && written.compare(title, Qt::CaseInsensitive) == 0);
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
  Lines found;
  for (qsizetype i = 0; i < lines.size() && found.end < 0; ++i) {
    if (found.begin < 0) {
      if (isTitle(lines[i], section)) found.begin = i + 1;
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

std::optional<QByteArray> iniText(const QString& file) {
  QFile stored(file);
  if (!stored.open(QIODevice::ReadOnly)) return std::nullopt;
  return stored.readAll();
}

std::optional<std::string> putIniText(const QString& file, const std::optional<QByteArray>& text) {
  const auto present = iniText(file);
  if (present == text) return std::nullopt;
  QFile stored(file);
  if (!present && stored.exists()) return file.toStdString() + ": cannot be read";
  if (!text) {
    return stored.remove() ? std::nullopt : std::optional(stored.errorString().toStdString());
  }
  const auto error = replaceWhole(file.toStdString(), *text);
  return error ? std::optional(file.toStdString() + ": " + error->reason) : std::nullopt;
}

std::optional<QByteArray> iniValue(const QByteArray& text, const QByteArray& section,
                                   const QByteArray& key) {
  const QByteArrayList lines = text.split('\n');
  const auto line = lineOf(lines, linesOf(lines, section), key);
  if (line < 0) return std::nullopt;
  return lines[line].mid(lines[line].indexOf('=') + 1).trimmed();
}

QByteArray withIniValue(const QByteArray& text, const QByteArray& section, const QByteArray& key,
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
      if (!text.isEmpty()) lines.prepend(QByteArray());
      lines.prepend('[' + section + ']');
      place.begin = 1;
    }
    lines.insert(place.begin, key + '=' + *value);
  }
  return lines.join('\n');
}

std::optional<std::string> setIniValue(const QString& file, const QByteArray& section,
                                       const QByteArray& key,
                                       const std::optional<QByteArray>& value) {
  return putIniText(file, withIniValue(iniText(file).value_or(QByteArray()), section, key, value));
}

}  // namespace linux_desktop
