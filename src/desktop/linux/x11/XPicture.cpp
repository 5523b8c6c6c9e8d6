#include "desktop/linux/x11/XPicture.h"

#include <array>

#include "desktop/linux/x11/RootBackground.h"

namespace linux_desktop {
namespace {

bool liesAs(const PixelLayout& layout, const xcb_render_pictforminfo_t& format) {
  const xcb_render_directformat_t& direct = format.direct;
  const auto mask = [](std::uint16_t width, std::uint16_t shift) {
    return std::uint32_t{width} << shift;
  };
  return format.type == XCB_RENDER_PICT_TYPE_DIRECT &&
         layout == PixelLayout{mask(direct.red_mask, direct.red_shift),
                               mask(direct.green_mask, direct.green_shift),
                               mask(direct.blue_mask, direct.blue_shift)};
}

}  // namespace

xcb_render_pictformat_t PictureFormats::ofDepth(std::uint8_t depth) {
  if (!known_) {
    known_.reset(xcb_render_query_pict_formats_reply(
        server_.get(), xcb_render_query_pict_formats(server_.get()), nullptr));
  }
  if (!known_) return XCB_NONE;
  const PixelLayout layout = PixelLayout::ofDepth(server_, depth);
  auto format = xcb_render_query_pict_formats_formats_iterator(known_.get());
  for (; format.rem > 0; xcb_render_pictforminfo_next(&format)) {
    if (format.data->depth == depth && liesAs(layout, *format.data)) return format.data->id;
  }
  return XCB_NONE;
}

XPicture::XPicture(XServer& server, QSize size, QSize held)
    : server_(server), size_(size), pixmap_(server, held) {}

std::shared_ptr<const XPicture> XPicture::fromImage(XServer& server, const QImage& image) {
  if (image.isNull()) return nullptr;
  const std::shared_ptr<const XPicture> picture(new XPicture(server, image.size(), image.size()));
  return putImage(server, picture->pixmap(), image, {}) ? picture : nullptr;
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

std::shared_ptr<const XPicture> XPicture::fromRoot(XServer& server, const QRect& area) {
  const std::shared_ptr<const XPicture> picture(new XPicture(server, area.size(), area.size()));
  return copyRootBackground(server, area, picture->pixmap()) ? picture : nullptr;
}

std::shared_ptr<const XPicture> XPicture::solid(XServer& server, std::uint32_t colour, QSize size) {
  const std::shared_ptr<const XPicture> picture(new XPicture(server, size, {1, 1}));
  const auto layout = PixelLayout::ofDepth(server, server.screen().root_depth);
  const XContext context(server, picture->pixmap(), layout.pixel(colour));
  const xcb_rectangle_t all{0, 0, 1, 1};
  const auto filled =
      xcb_poly_fill_rectangle_checked(server.get(), picture->pixmap(), context.id(), 1, &all);
  return succeeded(server, filled) ? picture : nullptr;
}

bool XPicture::copy(const ForeignPixmap& source, const QRect& area) const {
  const XContext context(server_, pixmap());
  const auto copied = xcb_copy_area_checked(
      server_.get(), source.id, pixmap(), context.id(), static_cast<std::int16_t>(area.x()),
      static_cast<std::int16_t>(area.y()), 0, 0, static_cast<std::uint16_t>(area.width()),
      static_cast<std::uint16_t>(area.height()));
  return succeeded(server_, copied);
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
      xcb_render_create_picture_checked(connection, ours, pixmap(), to, 0, nullptr),
      xcb_render_composite_checked(
          connection, XCB_RENDER_PICT_OP_SRC, theirs, XCB_NONE, ours,
          static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()), 0, 0, 0, 0,
          static_cast<std::uint16_t>(area.width()), static_cast<std::uint16_t>(area.height())),
      xcb_render_free_picture_checked(connection, theirs),
      xcb_render_free_picture_checked(connection, ours),
  };
  bool done = true;
  for (const auto& request : requests) done = succeeded(server_, request) && done;
  return done;
}

}  // namespace linux_desktop
