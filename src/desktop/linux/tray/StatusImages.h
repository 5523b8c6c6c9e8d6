#pragma once

#include <QByteArray>
#include <QIcon>
#include <QList>
#include <map>
#include <tuple>

namespace platform {
class NSImage;
}

namespace linux_desktop {

/// One size of an icon as a StatusNotifierItem carries it, signature (iiay): ARGB32, not
/// premultiplied, rows from the top, bytes in network order.
struct IconPixmap {
  int width = 0;
  int height = 0;
  QByteArray pixels;

  static constexpr std::tuple kFields{&IconPixmap::width, &IconPixmap::height, &IconPixmap::pixels};
};

using IconPixmaps = QList<IconPixmap>;

/// One picture in every size that panels show, for both tray protocols.
struct StatusImage {
  /// By this name icon themes have it as a shape that panels give their own colour; empty where it
  /// is not installed.
  QString name;
  QIcon icon;
  IconPixmaps pixmaps;
};

/// Status pictures rendered from SVG, each once: changing the icon back and forth costs nothing. An
/// SVG may have an element "grid22", which then is the picture at 22 pixels, and at 24 with a rim.
class StatusImages {
 public:
  /// Fully transparent for null and for what is no SVG (then with one warning). The result lives
  /// as long as this object. Main thread only.
  [[nodiscard]] const StatusImage& rendered(const platform::NSImage* image);

 private:
  /// By the image's bytes, which stay where they are as long as the process lives.
  std::map<const char*, StatusImage> rendered_;
};

}  // namespace linux_desktop
