#include "desktop/linux/wallpaper/PictureReader.h"

#include <QDateTime>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeDatabase>
#include <algorithm>
#include <list>
#include <mutex>

namespace linux_desktop {
namespace {

// xfdesktop 4.18 and 4.20 take 280 million pixels and show nothing.
constexpr qint64 kMostPixels = 100'000'000;
/// From here on a picture is decoded no larger than it is shown.
constexpr qint64 kLargePicture = 24'000'000;  // pixels

// What the picture loaders of all desktops read without a package that may be missing.
constexpr const char* kFormats[] = {"png", "jpeg", "jpg", "bmp", "gif", "tiff",
                                    "tif", "xpm",  "pbm", "pgm", "ppm", "ico"};

qint64 pixelsOf(const QSize& size) {
  return qint64{size.width()} * size.height();
}

/// Whether decoding it, at a smaller size where the format can do that, takes more memory than Qt
/// allows or more pixels than desktops show.
bool isTooLarge(const QImageReader& reader) {
  constexpr qint64 kMegabyte = qint64{1024} * 1024;
  const qint64 pixels = pixelsOf(reader.size());
  if (pixels > kMostPixels) return true;
  if (reader.format() == "jpeg" || reader.format() == "jpg") return false;
  constexpr int kLeastBits = 32;
  const QImage::Format format = reader.imageFormat();
  const int bits = format == QImage::Format_Invalid
                       ? kLeastBits
                       : std::max<int>(kLeastBits, QImage::toPixelFormat(format).bitsPerPixel());
  return pixels * bits / 8 > QImageReader::allocationLimit() * kMegabyte;
}

std::optional<QString> fileFault(const QString& path) {
  const QFileInfo file(path);
  if (path.contains(QLatin1Char('\n'))) return QStringLiteral("has a line break in its name");
  if (!file.isAbsolute()) return QStringLiteral("is not a whole path");
  if (!file.exists()) return QStringLiteral("does not exist");
  if (!file.isFile()) return QStringLiteral("is not a file");
  if (!file.isReadable()) return QStringLiteral("cannot be read");
  return std::nullopt;
}

/// Of what Qt does not read: most of its formats are plugins, which come in packages of their own.
QString unreadFault(const QString& path) {
  const QString type = QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchContent).name();
  const bool isRead = QImageReader::supportedMimeTypes().contains(type.toLatin1());
  if (isRead || !type.startsWith(QLatin1String("image/"))) {
    return QStringLiteral("is not a picture");
  }
  return QStringLiteral("takes a plugin of Qt's that is not here (%1; most are in %2)")
      .arg(type, QStringLiteral("qt6-image-formats-plugins"));
}

std::optional<QString> contentFault(QImageReader& reader) {
  reader.setDecideFormatFromContent(true);
  if (!reader.canRead()) return unreadFault(reader.fileName());
  const QSize size = reader.size();
  if (size.isEmpty()) return QStringLiteral("is not a whole picture");
  if (isTooLarge(reader)) {
    return QStringLiteral("is too large a picture (%1 x %2)").arg(size.width()).arg(size.height());
  }
  return std::nullopt;
}

std::optional<QString> formatFault(const QImageReader& reader) {
  const QByteArray format = reader.format();
  if (std::ranges::any_of(kFormats, [&](const char* known) { return format == known; })) {
    return std::nullopt;
  }
  return QStringLiteral("is of a format that desktops may not show (%1)")
      .arg(QString::fromLatin1(format));
}

std::string sentence(const QString& path, const QString& fault) {
  const QString name = QString(path).replace(QLatin1Char('\n'), QLatin1Char(' '));
  return QStringLiteral("%1 %2.").arg(name, fault).toStdString();
}

DecodedPicture decode(const PictureReading& reading) {
  // Anything but a file, a pipe for instance, might never end.
  if (!QFileInfo(reading.file).isFile()) return {};
  QImageReader reader(reading.file);
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(reading.upright);
  const QSize stored = reader.size();
  if (reader.format().startsWith("svg") || isTooLarge(reader)) return {};
  const bool turned =
      reading.upright && reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
  if (pixelsOf(stored) > kLargePicture && !reading.shown.isEmpty()) {
    const QSize shown = turned ? reading.shown.transposed() : reading.shown;
    reader.setScaledSize(stored.scaled(shown, Qt::KeepAspectRatioByExpanding).boundedTo(stored));
  }
  DecodedPicture picture{reader.read(), turned ? stored.transposed() : stored};
  // Not every format tells its size beforehand.
  if (picture.size.isEmpty()) picture.size = picture.image.size();
  return picture;
}

/// A reading, and the file that it was of.
struct Kept {
  PictureReading reading;
  QDateTime written;
  DecodedPicture picture;

  [[nodiscard]] bool serves(const PictureReading& wanted, const QDateTime& now) const {
    const bool isWhole = picture.image.size() == picture.size;
    return reading.file == wanted.file && reading.upright == wanted.upright && written == now &&
           !picture.image.isNull() && (isWhole || reading.shown == wanted.shown);
  }
};

struct Shelf {
  std::mutex mutex;
  std::list<Kept> pictures;
};

Shelf& shelf() {
  static Shelf shelf;
  return shelf;
}

}  // namespace

std::optional<std::string> pictureFault(const QString& path) {
  QImageReader reader(path);
  auto fault = fileFault(path);
  if (!fault) fault = contentFault(reader);
  if (!fault) fault = formatFault(reader);
  return fault ? std::optional(sentence(path, *fault)) : std::nullopt;
}

std::optional<std::string> readingFault(const QString& path) {
  QImageReader reader(path);
  auto fault = fileFault(path);
  if (!fault && !isDrawing(path)) fault = contentFault(reader);
  return fault ? std::optional(sentence(path, *fault)) : std::nullopt;
}

bool isDrawing(const QString& path) {
  const QString ending = QFileInfo(path).suffix().toLower();
  return ending == QLatin1String("svg") || ending == QLatin1String("svgz");
}

DecodedPicture readPicture(const PictureReading& reading) {
  constexpr std::size_t kMostKept = 2;
  const std::scoped_lock lock(shelf().mutex);
  std::list<Kept>& pictures = shelf().pictures;
  const QDateTime written = QFileInfo(reading.file).lastModified();
  const auto found = std::ranges::find_if(
      pictures, [&](const Kept& kept) { return kept.serves(reading, written); });
  if (found != pictures.end()) return found->picture;
  pictures.push_front({reading, written, decode(reading)});
  if (pictures.size() > kMostKept) pictures.pop_back();
  return pictures.front().picture;
}

std::optional<std::string> decodingFault(const PictureReading& reading) {
  if (!readPicture(reading).image.isNull()) return std::nullopt;
  if (auto fault = readingFault(reading.file)) return fault;
  return sentence(reading.file, QStringLiteral("is not a whole picture"));
}

bool forgetPictures() {
  const std::unique_lock lock(shelf().mutex, std::try_to_lock);
  if (lock) shelf().pictures.clear();
  return lock.owns_lock();
}

}  // namespace linux_desktop
