#include "desktop/linux/wallpaper/BackdropPicture.h"

#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>

namespace linux_desktop {
namespace {

/// From here on a photograph is decoded no larger than it is shown.
constexpr qint64 kLargePicture = 24'000'000;  // pixels

/// Qt refuses by itself what takes more than a quarter of this; the limit is the whole process's,
/// so it is raised only while one of ours is read.
class RoomForPictures {
 public:
  RoomForPictures() { QImageReader::setAllocationLimit(std::max(usual_, kMegabytes)); }
  ~RoomForPictures() { QImageReader::setAllocationLimit(usual_); }
  RoomForPictures(const RoomForPictures&) = delete;
  RoomForPictures& operator=(const RoomForPictures&) = delete;

 private:
  static constexpr int kMegabytes = 1024;
  int usual_ = QImageReader::allocationLimit();
};

bool liesOnItsSide(const QImageReader& reader) {
  return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
}

bool decodesWellAtSize(const QByteArray& format) {
  return format == "jpeg" || format == "jpg";
}

bool isDrawing(const QString& file) {
  const QString ending = QFileInfo(file).suffix().toLower();
  return ending == QLatin1String("svg") || ending == QLatin1String("svgz");
}

/// Not left to QImageReader, whose plugin for drawings is a package of its own.
QImage readDrawing(const QString& file, bool atSize,
                   const std::function<QSize(const QSize&)>& shownSize) {
  QSvgRenderer renderer(file);
  if (!renderer.isValid()) return {};
  const QSize stored = renderer.defaultSize();
  const QSize shown = shownSize(stored);
  QImage image(atSize && !shown.isEmpty() ? shown : stored, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  renderer.render(&painter);
  return image;
}

}  // namespace

QImage readPicture(const QString& file, const PictureDecoding& decoding,
                   const std::function<QSize(const QSize&)>& shownSize) {
  if (isDrawing(file)) return readDrawing(file, decoding.atSize, shownSize);
  const RoomForPictures room;
  QImageReader reader(file);
  reader.setAutoTransform(decoding.upright);
  const bool turned = decoding.upright && liesOnItsSide(reader);
  const QSize stored = reader.size();
  const QSize shown = shownSize(turned ? stored.transposed() : stored);
  const bool large = qint64{stored.width()} * stored.height() > kLargePicture;
  const bool shrinks = shown.width() <= stored.width() && shown.height() <= stored.height();
  if (stored.isValid() && decodesWellAtSize(reader.format()) && !shown.isEmpty() &&
      (decoding.atSize || large) && shrinks) {
    reader.setScaledSize(turned ? shown.transposed() : shown);
  }
  return reader.read();
}

}  // namespace linux_desktop
