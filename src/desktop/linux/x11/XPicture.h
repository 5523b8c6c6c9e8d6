#pragma once

#include <xcb/render.h>

#include <QImage>
#include <QRect>
#include <cstdint>
#include <memory>

#include "desktop/linux/windowsystem/DesktopView.h"
#include "desktop/linux/xserver/XDrawing.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// How the server's Render extension names the ways in which pixels lie. They never change while it
/// runs, and are asked for once.
class PictureFormats {
 public:
  /// `server` outlives this.
  explicit PictureFormats(XServer& server) : server_(server) {}

  /// The format in which pixels of that depth lie as PixelLayout says; none where the server has
  /// none.
  [[nodiscard]] xcb_render_pictformat_t ofDepth(std::uint8_t depth);

 private:
  XServer& server_;
  XReply<xcb_render_query_pict_formats_reply_t> known_;
};

/// A picture that the X server holds, ready to be a window's background. Nothing of it is kept in
/// this process. Given back to the server when the last one lets go of it; a window that has it as
/// its background keeps showing it. The server connection outlives it.
class XPicture final : public HeldPicture {
 public:
  // Each gives null where the server does not take the picture: no memory, a screen whose colours
  // are not known here, or a source that is gone.

  /// Opaque; transparency is ignored.
  [[nodiscard]] static std::shared_ptr<const XPicture> fromImage(XServer& server,
                                                                 const QImage& image);
  /// The part `area` of a pixmap that holds all of it.
  [[nodiscard]] static std::shared_ptr<const XPicture> fromPixmap(XServer& server,
                                                                  PictureFormats& formats,
                                                                  const ForeignPixmap& source,
                                                                  const QRect& area);
  /// What the bare root window shows there.
  [[nodiscard]] static std::shared_ptr<const XPicture> fromRoot(XServer& server, const QRect& area);
  /// One colour everywhere, 0xRRGGBB. Takes the memory of one pixel.
  [[nodiscard]] static std::shared_ptr<const XPicture> solid(XServer& server, std::uint32_t colour,
                                                             QSize size);

  [[nodiscard]] QSize size() const { return size_; }
  /// Of the root window's depth. A background that is repeated gives the whole picture.
  [[nodiscard]] xcb_pixmap_t pixmap() const { return pixmap_.id(); }

 private:
  XPicture(XServer& server, QSize size, QSize held);

  [[nodiscard]] bool copy(const ForeignPixmap& source, const QRect& area) const;
  [[nodiscard]] bool convert(PictureFormats& formats, const ForeignPixmap& source,
                             const QRect& area) const;

  XServer& server_;
  QSize size_;
  XPixmap pixmap_;
};

}  // namespace linux_desktop
