#include "desktop/linux/wallpaper/PictureCheck.h"

#include <QFileInfo>
#include <QImageReader>
#include <QSize>
#include <algorithm>

namespace linux_desktop {
namespace {

// xfdesktop 4.18 and 4.20 take 280 million pixels and show nothing.
constexpr qint64 kMostPixels = 100'000'000;

// What the picture loaders of all desktops read without a package that may be missing.
constexpr const char* kFormats[] = {"png", "jpeg", "jpg", "bmp", "gif", "tiff",
                                    "tif", "xpm",  "pbm", "pgm", "ppm", "ico"};

std::optional<QString> fileFault(const QString& path) {
  const QFileInfo file(path);
  if (path.contains(QLatin1Char('\n'))) return QStringLiteral("has a line break in its name");
  if (!file.isAbsolute()) return QStringLiteral("is not a whole path");
  if (!file.exists()) return QStringLiteral("does not exist");
  if (!file.isFile()) return QStringLiteral("is not a file");
  if (!file.isReadable()) return QStringLiteral("cannot be read");
  return std::nullopt;
}

std::optional<QString> contentFault(const QString& path) {
  QImageReader reader(path);
  reader.setDecideFormatFromContent(true);
  if (!reader.canRead()) return QStringLiteral("is not a picture");
  const QByteArray format = reader.format();
  if (std::ranges::none_of(kFormats, [&](const char* known) { return format == known; })) {
    return QStringLiteral("is of a format that desktops may not show (%1)")
        .arg(QString::fromLatin1(format));
  }
  const QSize size = reader.size();
  if (size.isEmpty()) return QStringLiteral("is not a whole picture");
  if (qint64{size.width()} * size.height() > kMostPixels) {
    return QStringLiteral("is too large a picture (%1 x %2)").arg(size.width()).arg(size.height());
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> pictureFault(const QString& path) {
  auto fault = fileFault(path);
  if (!fault) fault = contentFault(path);
  if (!fault) return std::nullopt;
  const QString name = QString(path).replace(QLatin1Char('\n'), QLatin1Char(' '));
  return QStringLiteral("%1 %2.").arg(name, *fault).toStdString();
}

}  // namespace linux_desktop
