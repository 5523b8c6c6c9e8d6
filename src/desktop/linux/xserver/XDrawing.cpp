#include "desktop/linux/xserver/XDrawing.h"

#include <algorithm>
#include <array>
#include <bit>

#include "desktop/linux/log/Log.h"

namespace linux_desktop {
namespace {

/// What a request to put pixels takes beside them, generously.
constexpr std::size_t kRequestHead = 64;

struct ImageRow {
  PixelLayout layout;
  QImage::Format format;
};
constexpr std::array kImages{
    ImageRow{{0xff0000, 0xff00, 0xff}, QImage::Format_RGB32},
    ImageRow{{0xff, 0xff00, 0xff0000}, QImage::Format_RGBX8888},
    ImageRow{{0x3ff00000, 0xffc00, 0x3ff}, QImage::Format_RGB30},
    ImageRow{{0x3ff, 0xffc00, 0x3ff00000}, QImage::Format_BGR30},
    ImageRow{{0xf800, 0x7e0, 0x1f}, QImage::Format_RGB16},
    ImageRow{{0x7c00, 0x3e0, 0x1f}, QImage::Format_RGB555},
};

constexpr std::uint32_t kWhole = 0xff;

/// The nearest of `to` steps for a value of `from` steps.
std::uint32_t scaled(std::uint32_t value, std::uint32_t from, std::uint32_t to) {
  return from == 0 ? 0 : (value * to + from / 2) / from;
}

std::uint32_t partOf(std::uint32_t pixel, std::uint32_t mask) {
  const int shift = std::countr_zero(mask);
  return scaled((pixel & mask) >> shift, mask >> shift, kWhole);
}

std::uint32_t placed(std::uint32_t part, std::uint32_t mask) {
  const int shift = std::countr_zero(mask);
  return scaled(part & kWhole, kWhole, mask >> shift) << shift;
}

}  // namespace

XPixmap::XPixmap(XServer& server, QSize size)
    : server_(server), id_(xcb_generate_id(server.get())) {
  xcb_create_pixmap(server.get(), server.screen().root_depth, id_, server.root(),
                    static_cast<std::uint16_t>(size.width()),
                    static_cast<std::uint16_t>(size.height()));
}

XPixmap::~XPixmap() {
  xcb_free_pixmap(server_.get(), id_);
  xcb_flush(server_.get());
}

XContext::XContext(XServer& server, xcb_drawable_t drawable, std::uint32_t foreground)
    : server_(server), id_(xcb_generate_id(server.get())) {
  const std::array<std::uint32_t, 2> values{foreground, 0};
  xcb_create_gc(server.get(), id_, drawable, XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES,
                values.data());
}

PixelLayout PixelLayout::ofDepth(const XServer& server, std::uint8_t depth) {
  const xcb_screen_t& screen = server.screen();
  if (depth != screen.root_depth) return {};
  for (auto each = xcb_screen_allowed_depths_iterator(&screen); each.rem > 0;
       xcb_depth_next(&each)) {
    for (auto visual = xcb_depth_visuals_iterator(each.data); visual.rem > 0;
         xcb_visualtype_next(&visual)) {
      const xcb_visualtype_t& type = *visual.data;
      if (type.visual_id == screen.root_visual) {
        return {type.red_mask, type.green_mask, type.blue_mask};
      }
    }
  }
  return {};
}

std::uint32_t PixelLayout::colour(std::uint32_t pixel) const {
  return partOf(pixel, red) << 16 | partOf(pixel, green) << 8 | partOf(pixel, blue);
}

std::uint32_t PixelLayout::pixel(std::uint32_t colour) const {
  return placed(colour >> 16, red) | placed(colour >> 8, green) | placed(colour, blue);
}

std::optional<QImage::Format> PixelLayout::format() const {
  const auto row = std::ranges::find(kImages, *this, &ImageRow::layout);
  return row == kImages.end() ? std::nullopt : std::optional(row->format);
}

bool succeeded(XServer& server, xcb_void_cookie_t request) {
  const XReply<xcb_generic_error_t> error(xcb_request_check(server.get(), request));
  if (error) qCDebug(lcX11) << "no drawing: error" << error->error_code;
  return !error && xcb_connection_has_error(server.get()) == 0;
}

bool putImage(XServer& server, xcb_drawable_t drawable, const QImage& image, const QPoint& place) {
  const std::uint8_t depth = server.screen().root_depth;
  const auto format = PixelLayout::ofDepth(server, depth).format();
  if (!format) qCWarning(lcX11, "pictures of depth %d are not known", depth);
  if (!format || image.isNull()) return false;
  const QImage pixels = image.convertToFormat(*format);
  const XContext context(server, drawable);
  const auto stride = static_cast<std::size_t>(pixels.bytesPerLine());
  const std::size_t longest = std::size_t{xcb_get_maximum_request_length(server.get())} * 4;
  const int most = std::max(1, static_cast<int>((longest - kRequestHead) / stride));
  bool done = true;
  for (int top = 0; top < pixels.height(); top += most) {
    const int rows = std::min(most, pixels.height() - top);
    const auto request = xcb_put_image_checked(
        server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, context.id(),
        static_cast<std::uint16_t>(pixels.width()), static_cast<std::uint16_t>(rows),
        static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y() + top), 0, depth,
        static_cast<std::uint32_t>(stride * static_cast<std::size_t>(rows)),
        pixels.constScanLine(top));
    done = succeeded(server, request) && done;
  }
  return done;
}

}  // namespace linux_desktop
