#include "desktop/linux/wallpaper/Timetable.h"

#include <QFile>
#include <QXmlStreamReader>
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

namespace linux_desktop {
namespace {

/// One picture, in one size or several.
struct SizedFile {
  /// Width by height; 0 where only one size is given.
  double ratio = 0;
  QString file;
};
using Picture = std::vector<SizedFile>;

/// One picture for some seconds, or how it becomes the next one.
struct Turn {
  double seconds = 0;
  Picture first;
  Picture last;
};

struct Timetable {
  QDateTime start;
  std::vector<Turn> turns;
};

Picture readPicture(QXmlStreamReader& xml) {
  Picture picture;
  QString text;
  while (!xml.atEnd() && xml.readNext() != QXmlStreamReader::EndElement) {
    if (xml.isCharacters()) text += xml.text();
    if (!xml.isStartElement()) continue;
    const double width = xml.attributes().value(QLatin1String("width")).toDouble();
    const double height = xml.attributes().value(QLatin1String("height")).toDouble();
    const QString file = xml.readElementText().trimmed();
    picture.push_back({height > 0 ? width / height : 0, file});
  }
  if (picture.empty()) picture.push_back({0, text.trimmed()});
  return picture;
}

Turn readTurn(QXmlStreamReader& xml) {
  Turn turn;
  while (xml.readNextStartElement()) {
    const auto name = xml.name();
    if (name == QLatin1String("duration")) {
      turn.seconds = std::max(0.0, xml.readElementText().toDouble());
    } else if (name == QLatin1String("file")) {
      turn.first = turn.last = readPicture(xml);
    } else if (name == QLatin1String("from")) {
      turn.first = readPicture(xml);
    } else if (name == QLatin1String("to")) {
      turn.last = readPicture(xml);
    } else {
      xml.skipCurrentElement();
    }
  }
  return turn;
}

QDateTime readStart(QXmlStreamReader& xml) {
  std::map<QString, int> part{{"year", 1970}, {"month", 1}, {"day", 1}};
  while (xml.readNextStartElement()) {
    const QString name = xml.name().toString();
    part[name] = xml.readElementText().toInt();
  }
  return {QDate(part["year"], part["month"], part["day"]),
          QTime(part["hour"], part["minute"], part["second"])};
}

Timetable read(const QString& path) {
  Timetable table;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return table;
  QXmlStreamReader xml(&file);
  if (!xml.readNextStartElement()) return table;
  while (xml.readNextStartElement()) {
    if (xml.name() == QLatin1String("starttime")) {
      table.start = readStart(xml);
    } else if (xml.name() == QLatin1String("static") || xml.name() == QLatin1String("transition")) {
      table.turns.push_back(readTurn(xml));
    } else {
      xml.skipCurrentElement();
    }
  }
  if (xml.hasError()) table.turns.clear();
  return table;
}

QString bestFor(const Picture& picture, const QSize& monitor) {
  const double wanted = static_cast<double>(monitor.width()) / std::max(1, monitor.height());
  const auto best = std::ranges::min_element(
      picture, {}, [&](const SizedFile& each) { return std::abs(each.ratio - wanted); });
  return best == picture.end() ? QString() : best->file;
}

}  // namespace

bool isTimetable(const QString& file) {
  return file.endsWith(QLatin1String(".xml"));
}

QString pictureAt(const QString& timetable, const QDateTime& time, const QSize& monitor) {
  const Timetable table = read(timetable);
  double whole = 0;
  for (const Turn& turn : table.turns) whole += turn.seconds;
  if (whole <= 0) return {};
  const double since = table.start.isValid() ? static_cast<double>(table.start.secsTo(time)) : 0;
  double left = std::fmod(since, whole);
  if (left < 0) left += whole;
  for (const Turn& turn : table.turns) {
    if (left < turn.seconds) {
      return bestFor(left * 2 < turn.seconds ? turn.first : turn.last, monitor);
    }
    left -= turn.seconds;
  }
  return {};
}

}  // namespace linux_desktop
