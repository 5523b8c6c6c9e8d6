#pragma once

#include <QImage>
#include <QRect>
#include <optional>
#include <vector>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// A pixmap at the server, of the root window's depth; freed with this.
class RootPixmap {
 public:
  RootPixmap(XServer& server, const QSize& size);
  ~RootPixmap();
  RootPixmap(const RootPixmap&) = delete;
  RootPixmap& operator=(const RootPixmap&) = delete;

  [[nodiscard]] xcb_pixmap_t id() const { return id_; }
  [[nodiscard]] QSize size() const { return size_; }
  void fill(std::uint32_t pixel);
  /// Copies what `drawable` holds there to the same place.
  void copy(xcb_drawable_t drawable, const QRect& area);
  void draw(const QImage& image, const QPoint& place);

 private:
  XServer& server_;
  xcb_pixmap_t id_ = XCB_NONE;
  xcb_gcontext_t context_ = XCB_NONE;
  std::uint8_t depth_ = 0;
  QSize size_;
};

/// The whole root window's rectangle.
[[nodiscard]] QRect rootArea(XServer& server);

/// The pixmap that the root window's properties name, if it exists, is as large as the root window
/// and of its depth.
[[nodiscard]] std::optional<xcb_pixmap_t> namedRootPixmap(XServer& server);

/// Makes a copy of `picture` the root window's background and names it in both properties, held by
/// the server when its maker has gone. What was named before is freed as its makers expect. False
/// when the server refuses.
[[nodiscard]] bool setRootPixmap(XServer& server, const RootPixmap& picture);

/// Gives the root window one colour and takes the properties away.
void setRootColour(XServer& server, std::uint32_t pixel);

/// The pixels of a drawable, row by row; empty when it is gone or has not four bytes a pixel.
[[nodiscard]] std::vector<std::uint32_t> pixelsOf(XServer& server, xcb_drawable_t drawable,
                                                  const QRect& area);

/// What the root window's background is there, also under other windows, whatever the properties
/// say.
[[nodiscard]] std::optional<std::uint32_t> rootBackgroundAt(XServer& server, const QPoint& point);

}  // namespace linux_desktop
