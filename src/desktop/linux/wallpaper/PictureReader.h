#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <optional>
#include <string>

namespace linux_desktop {

/// Why no desktop can be told to show that file, in one line, as far as a glance tells: most of
/// them draw a bare colour then, and say nothing. None when it is a readable picture of a common
/// format that takes no more memory than Qt allows one (256 MB), and whose path settings files can
/// hold.
[[nodiscard]] std::optional<std::string> pictureFault(const QString& path);

/// Why a cover cannot show that file, as above: whatever Qt reads here will do, and a drawing.
[[nodiscard]] std::optional<std::string> readingFault(const QString& path);

/// Whether it is drawn anew at each size (SVG). No `readPicture` reads such.
[[nodiscard]] bool isDrawing(const QString& path);

/// How a picture is read.
struct PictureReading {
  QString file;
  /// Turned upright as its EXIF orientation says.
  bool upright = false;
  /// What it is scaled to cover, or less; empty where it is shown at its own size.
  QSize shown = {};
};

/// A picture as it was read.
struct DecodedPicture {
  /// Smaller than the picture where that is much larger than it is shown. Null where it cannot be
  /// read.
  QImage image;
  /// The picture's own size, in pixels.
  QSize size;
};

/// May take seconds; on any thread, and one picture at a time. Pictures that were read last are
/// kept until `forgetPictures`, so that all monitors, and the covers after them, share one reading.
[[nodiscard]] DecodedPicture readPicture(const PictureReading& reading);

/// Why that picture cannot be read to its end, in one line. As `readPicture` otherwise.
[[nodiscard]] std::optional<std::string> decodingFault(const PictureReading& reading);

/// False, and nothing is forgotten, while one is being read.
[[nodiscard]] bool forgetPictures();

}  // namespace linux_desktop
