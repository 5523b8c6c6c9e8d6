#include "desktop/linux/wallpaper/BackdropPicture.h"

#include <QImageReader>
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
  return format.startsWith("svg") || format == "jpeg" || format == "jpg";
}

}  // namespace

QImage readPicture(const QString& file, const PictureDecoding& decoding,
                   const std::function<QSize(const QSize&)>& shownSize) {
  const RoomForPictures room;
  QImageReader reader(file);
  reader.setAutoTransform(decoding.upright);
  const bool turned = decoding.upright && liesOnItsSide(reader);
  const QSize stored = reader.size();
  const QSize shown = shownSize(turned ? stored.transposed() : stored);
  const bool large = qint64{stored.width()} * stored.height() > kLargePicture;
  const bool shrinks = shown.width() <= stored.width() && shown.height() <= stored.height();
  const bool drawing = reader.format().startsWith("svg");
  if (stored.isValid() && decodesWellAtSize(reader.format()) && !shown.isEmpty() &&
      (decoding.atSize || large) && (shrinks || drawing)) {
    reader.setScaledSize(turned ? shown.transposed() : shown);
  }
  return reader.read();
}

}  // namespace linux_desktop
