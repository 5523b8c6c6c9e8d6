#include "desktop/linux/ui/PictureLoader.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QImageReader>
#include <QThreadPool>
#include <utility>

namespace linux_desktop {
namespace {

constexpr qint64 kMostBytes = 200'000'000;
constexpr qint64 kMostPixels = 100'000'000;

/// Drawings may take any time and refer to other files.
bool isDrawing(const QByteArray& format) {
  return format == "svg" || format == "svgz" || format == "pdf";
}

bool hasPalette(QImage::Format format) {
  return QImage::toPixelFormat(format).colorModel() == QPixelFormat::Indexed;
}

/// Qt alone would dither the small copy with the colours of the large one.
QImage scaledFreely(const QImage& picture, QSize size) {
  if (picture.isNull()) return {};
  constexpr int kSamples = 4;
  return picture.scaled(size * kSamples, Qt::IgnoreAspectRatio, Qt::FastTransformation)
      .convertToFormat(QImage::Format_ARGB32_Premultiplied)
      .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

QImage readSmallPicture(const QString& path, QSize within) {
  const QFileInfo file(path);
  // Anything but a file, a pipe for instance, might never end.
  if (!file.isFile() || !file.isReadable() || file.size() > kMostBytes) return {};
  QImageReader reader(path);
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(true);
  const QSize size = reader.size();
  if (size.isEmpty() || qint64{size.width()} * size.height() > kMostPixels) return {};
  if (isDrawing(reader.format())) return {};
  if (reader.transformation().testFlag(QImageIOHandler::TransformationRotate90)) within.transpose();
  const bool fits = size.width() <= within.width() && size.height() <= within.height();
  if (fits) return reader.read();
  const QSize small = size.scaled(within, Qt::KeepAspectRatio).expandedTo({1, 1});
  if (hasPalette(reader.imageFormat())) return scaledFreely(reader.read(), small);
  reader.setScaledSize(small);
  return reader.read();
}

void PictureLoader::load(const QString& path, QSize within, Loaded loaded) {
  request_ = std::make_shared<const Loaded>(std::move(loaded));
  // The application waits for the threads of the pool before it goes.
  QThreadPool::globalInstance()->start(
      [request = std::weak_ptr(request_), application = qApp, path, within] {
        const auto deliver = [request, picture = readSmallPicture(path, within)] {
          if (const auto wanted = request.lock()) (*wanted)(picture);
        };
        QMetaObject::invokeMethod(application, deliver, Qt::QueuedConnection);
      });
}

}  // namespace linux_desktop
