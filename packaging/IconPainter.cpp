#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

namespace {

QImage painted(QSvgRenderer& drawing, int size) {
  QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  drawing.render(&painter);
  return image;
}

}  // namespace

/// icon_painter DRAWING SIZE FILE...: paints the square drawing as FILE, a PNG of SIZE pixels; any
/// number of the last two. Ends with 1, after one line, when one of them cannot be read or written.
int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList words = QCoreApplication::arguments();
  QSvgRenderer drawing(words.value(1));
  if (!drawing.isValid()) {
    std::fprintf(stderr, "%s is no drawing\n", qPrintable(words.value(1)));
    return 1;
  }
  for (qsizetype i = 2; i + 1 < words.size(); i += 2) {
    if (!painted(drawing, words[i].toInt()).save(words[i + 1], "PNG")) {
      std::fprintf(stderr, "%s cannot be written\n", qPrintable(words[i + 1]));
      return 1;
    }
  }
  return 0;
}
