#include "desktop/linux/x11/XPicture.h"

#include <xcb/render.h>

#include <algorithm>
#include <array>
#include <initializer_list>

#include "desktop/linux/xserver/XLog.h"

namespace linux_desktop {
namespace {

/// What a request to put pixels takes beside them, generously.
constexpr std::size_t kRequestHead = 64;

/// A graphics context for one drawing.
class Context {
 public:
  Context(XServer& server, xcb_drawable_t drawable, std::uint32_t foreground = 0)
      : server_(server), id_(xcb_generate_id(server.get())) {
    const std::array<std::uint32_t, 2> values{foreground, 0};
    xcb_create_gc(server.get(), id_, drawable, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES,
                  values.data());
  }
  ~Context() { xcb_free_gc(server_.get(), id_); }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  [[nodiscard]] xcb_gcontext_t id() const { return id_; }

 private:
  XServer& server_;
  xcb_gcontext_t id_;
};

/// How an image must lie in memory to be put on a screen of that depth.
std::optional<QImage::Format> formatOfDepth(std::uint8_t depth) {
  switch (depth) {
    case 16:
      return QImage::Format_RGB16;
    case 24:
    case 32:
      return QImage::Format_RGB32;
    case 30:
      return QImage::Format_RGB30;
    default:
      return std::nullopt;
  }
}

}  // namespace

XPicture::XPicture(XServer& server, QSize size, QSize held)
    : server_(server), size_(size), pixmap_(xcb_generate_id(server.get())) {
  xcb_create_pixmap(server.get(), server.screen().root_depth, pixmap_, server.root(),
                    static_cast<std::uint16_t>(held.width()),
                    static_cast<std::uint16_t>(held.height()));
}

XPicture::~XPicture() {
  xcb_free_pixmap(server_.get(), pixmap_);
  xcb_flush(server_.get());
}

std::shared_ptr<const XPicture> XPicture::fromImage(XServer& server, const QImage& image) {
  const auto format = formatOfDepth(server.screen().root_depth);
  if (!format) {
    qCWarning(lcX11, "pictures of depth %d are not known; desktop icons are not covered",
              server.screen().root_depth);
    return nullptr;
  }
  if (image.isNull()) return nullptr;
  const std::shared_ptr<const XPicture> picture(new XPicture(server, image.size(), image.size()));
  return picture->put(image.convertToFormat(*format)) ? picture : nullptr;
}

std::shared_ptr<const XPicture> XPicture::fromPixmap(XServer& server, PictureFormats& formats,
                                                     const ForeignPixmap& source,
                                                     const QRect& area) {
  const std::shared_ptr<const XPicture> picture(new XPicture(server, area.size(), area.size()));
  const bool taken = source.depth == server.screen().root_depth
                         ? picture->copy(source, area)
                         : picture->convert(formats, source, area);
  return taken ? picture : nullptr;
}

std::shared_ptr<const XPicture> XPicture::solid(XServer& server, std::uint32_t pixel, QSize size) {
  const std::shared_ptr<const XPicture> picture(new XPicture(server, size, {1, 1}));
  const Context context(server, picture->pixmap_, pixel);
  const xcb_rectangle_t all{0, 0, 1, 1};
  const bool filled = picture->succeeded(
      xcb_poly_fill_rectangle_checked(server.get(), picture->pixmap_, context.id(), 1, &all));
  return filled ? picture : nullptr;
}

bool XPicture::put(const QImage& image) const {
  const Context context(server_, pixmap_);
  const auto stride = static_cast<std::size_t>(image.bytesPerLine());
  const std::size_t longest = std::size_t{xcb_get_maximum_request_length(server_.get())} * 4;
  const int most = std::max(1, static_cast<int>((longest - kRequestHead) / stride));
  bool done = true;
  for (int top = 0; top < image.height(); top += most) {
    const int rows = std::min(most, image.height() - top);
    const auto request = xcb_put_image_checked(
        server_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap_, context.id(),
        static_cast<std::uint16_t>(image.width()), static_cast<std::uint16_t>(rows), 0,
        static_cast<std::int16_t>(top), 0, server_.screen().root_depth,
        static_cast<std::uint32_t>(stride * static_cast<std::size_t>(rows)),
        image.constScanLine(top));
    done = succeeded(request) && done;
  }
  return done;
}

bool XPicture::copy(const ForeignPixmap& source, const QRect& area) const {
  const Context context(server_, pixmap_);
  return succeeded(xcb_copy_area_checked(
      server_.get(), source.id, pixmap_, context.id(), static_cast<std::int16_t>(area.x()),
      static_cast<std::int16_t>(area.y()), 0, 0, static_cast<std::uint16_t>(area.width()),
      static_cast<std::uint16_t>(area.height())));
}

bool XPicture::convert(PictureFormats& formats, const ForeignPixmap& source,
                       const QRect& area) const {
  // Pixels cannot simply be copied from one depth to another.
  xcb_connection_t* connection = server_.get();
  const xcb_render_pictformat_t from = formats.ofDepth(source.depth);
  const xcb_render_pictformat_t to = formats.ofDepth(server_.screen().root_depth);
  if (from == XCB_NONE || to == XCB_NONE) return false;
  const xcb_render_picture_t theirs = xcb_generate_id(connection);
  const xcb_render_picture_t ours = xcb_generate_id(connection);
  const std::array requests{
      xcb_render_create_picture_checked(connection, theirs, source.id, from, 0, nullptr),
      xcb_render_create_picture_checked(connection, ours, pixmap_, to, 0, nullptr),
      xcb_render_composite_checked(
          connection, XCB_RENDER_PICT_OP_SRC, theirs, XCB_NONE, ours,
          static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()), 0, 0, 0, 0,
          static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(area.height())),
      xcb_render_free_picture_checked(connection, theirs),
      xcb_render_free_picture_checked(connection, ours),
  };
  bool done = true;
  for (const auto& request : requests) done = succeeded(request) && done;
  return done;
}

bool XPicture::succeeded(xcb_void_cookie_t request) const {
  const XReply<xcb_generic_error_t> error(xcb_request_check(server_.get(), request));
  if (error) qCDebug(lcX11) << "no picture: error" << error->error_code;
  return !error && xcb_connection_has_error(server_.get()) == 0;
}

}  // namespace linux_desktop
