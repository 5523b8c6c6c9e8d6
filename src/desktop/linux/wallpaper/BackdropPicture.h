#pragma once

#include <QImage>
#include <QString>
#include <functional>

namespace linux_desktop {

/// How a picture of a backdrop is decoded.
struct PictureDecoding {
  /// Turned upright as its EXIF orientation says.
  bool upright = false;
  /// Decoded at the size at which it is shown where its format can do that; otherwise only when it
  /// is so large that memory asks for it.
  bool atSize = false;
};

/// Reads the picture, at most as large as a desktop would show it. `shownSize` tells at which size
/// one of the given size is going to be shown; the result has either of the two sizes. Null where
/// it cannot be read.
[[nodiscard]] QImage readPicture(const QString& file, const PictureDecoding& decoding,
                                 const std::function<QSize(const QSize&)>& shownSize);

}  // namespace linux_desktop
