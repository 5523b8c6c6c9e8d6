#pragma once

#include <QImage>
#include <QPoint>
#include <QSize>
#include <cstdint>
#include <optional>

#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// A pixmap of somebody else, which may be gone at any time.
struct ForeignPixmap {
  xcb_pixmap_t id = XCB_NONE;
  std::uint8_t depth = 0;
};

/// A pixmap of the root window's depth, given back to the server with this. A window that has it
/// as its background keeps showing it.
class XPixmap {
 public:
  XPixmap(XServer& server, QSize size);
  ~XPixmap();
  XPixmap(const XPixmap&) = delete;
  XPixmap& operator=(const XPixmap&) = delete;

  [[nodiscard]] xcb_pixmap_t id() const { return id_; }

 private:
  XServer& server_;
  xcb_pixmap_t id_;
};

/// A graphics context for one drawing.
class XContext {
 public:
  XContext(XServer& server, xcb_drawable_t drawable, std::uint32_t foreground = 0);
  ~XContext() { xcb_free_gc(server_.get(), id_); }
  XContext(const XContext&) = delete;
  XContext& operator=(const XContext&) = delete;

  [[nodiscard]] xcb_gcontext_t id() const { return id_; }

 private:
  XServer& server_;
  xcb_gcontext_t id_;
};

/// Where the colours lie in a pixel, as masks.
struct PixelLayout {
  std::uint32_t red = 0xff0000;
  std::uint32_t green = 0xff00;
  std::uint32_t blue = 0xff;
  bool operator==(const PixelLayout&) const = default;

  /// Of a drawable of that depth: as the screen's own pixels lie where it is the root window's, and
  /// else 8 bits a colour.
  [[nodiscard]] static PixelLayout ofDepth(const XServer& server, std::uint8_t depth);
  // A colour is 0xRRGGBB.
  [[nodiscard]] std::uint32_t colour(std::uint32_t pixel) const;
  [[nodiscard]] std::uint32_t pixel(std::uint32_t colour) const;
  /// None where no image lies in memory like this.
  [[nodiscard]] std::optional<QImage::Format> format() const;
};

/// Waits for the server's answer.
[[nodiscard]] bool succeeded(XServer& server, xcb_void_cookie_t request);

/// Puts an image into a drawable of the root window's depth; its transparency is ignored. False
/// where the server does not take it or nobody here knows how its pixels lie.
[[nodiscard]] bool putImage(XServer& server, xcb_drawable_t drawable, const QImage& image,
                            const QPoint& place);

}  // namespace linux_desktop
