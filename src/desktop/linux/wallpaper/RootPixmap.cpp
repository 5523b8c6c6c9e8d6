#include "desktop/linux/wallpaper/RootPixmap.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

namespace linux_desktop {
namespace {

constexpr std::array kNames{"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"};

struct Geometry {
  QSize size;
  std::uint8_t depth = 0;
};

std::optional<Geometry> geometryOf(xcb_connection_t* connection, xcb_drawable_t drawable) {
  xcb_generic_error_t* error = nullptr;
  const XReply<xcb_get_geometry_reply_t> reply(
      xcb_get_geometry_reply(connection, xcb_get_geometry(connection, drawable), &error));
  const XReply<xcb_generic_error_t> gone(error);
  if (!reply) return std::nullopt;
  return Geometry{{reply->width, reply->height}, reply->depth};
}

std::int16_t coordinate(int value) {
  return static_cast<std::int16_t>(value);
}
std::uint16_t length(int value) {
  return static_cast<std::uint16_t>(std::max(value, 0));
}

void copyArea(xcb_connection_t* connection, xcb_drawable_t from, xcb_drawable_t into,
              xcb_gcontext_t context, const QRect& area) {
  xcb_copy_area(connection, from, into, context, coordinate(area.x()), coordinate(area.y()),
                coordinate(area.x()), coordinate(area.y()), length(area.width()),
                length(area.height()));
}

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Maker = std::unique_ptr<xcb_connection_t, Disconnect>;

/// The maker's copy stays at the server when the maker has gone.
xcb_pixmap_t copyForEver(xcb_connection_t* maker, xcb_window_t root, const RootPixmap& picture) {
  const auto geometry = geometryOf(maker, root);
  if (!geometry) return XCB_NONE;
  const xcb_pixmap_t copy = xcb_generate_id(maker);
  xcb_create_pixmap(maker, geometry->depth, copy, root, length(picture.size().width()),
                    length(picture.size().height()));
  const xcb_gcontext_t context = xcb_generate_id(maker);
  xcb_create_gc(maker, context, copy, 0, nullptr);
  copyArea(maker, picture.id(), copy, context, {{}, picture.size()});
  xcb_free_gc(maker, context);
  xcb_set_close_down_mode(maker, XCB_CLOSE_DOWN_RETAIN_PERMANENT);
  return copy;
}

/// What its maker left for ever goes when that maker is "killed": the custom of all who set one.
void freeFormer(XServer& server, xcb_connection_t* maker) {
  const auto one = server.numbers(server.root(), kNames[0]);
  const auto other = server.numbers(server.root(), kNames[1]);
  if (!one.empty() && one == other && one.front() != XCB_NONE) {
    xcb_kill_client(maker, one.front());
  }
}

}  // namespace

RootPixmap::RootPixmap(XServer& server, const QSize& size)
    : server_(server), id_(xcb_generate_id(server.get())), size_(size) {
  depth_ = geometryOf(server.get(), server.root()).value_or(Geometry{}).depth;
  xcb_create_pixmap(server.get(), depth_, id_, server.root(), length(size.width()),
                    length(size.height()));
  context_ = xcb_generate_id(server.get());
  xcb_create_gc(server.get(), context_, id_, 0, nullptr);
}

RootPixmap::~RootPixmap() {
  xcb_free_gc(server_.get(), context_);
  xcb_free_pixmap(server_.get(), id_);
  xcb_flush(server_.get());
}

void RootPixmap::fill(std::uint32_t pixel) {
  xcb_change_gc(server_.get(), context_, XCB_GC_FOREGROUND, &pixel);
  const xcb_rectangle_t whole{0, 0, length(size_.width()), length(size_.height())};
  xcb_poly_fill_rectangle(server_.get(), id_, context_, 1, &whole);
}

void RootPixmap::copy(xcb_drawable_t drawable, const QRect& area) {
  copyArea(server_.get(), drawable, id_, context_, area);
}

void RootPixmap::draw(const QImage& image, const QPoint& place) {
  const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
  // A request holds so many units of four bytes.
  const qsizetype longest =
      4 * qsizetype{xcb_get_maximum_request_length(server_.get())} - qsizetype{64};
  const int rows = static_cast<int>(std::max<qsizetype>(1, longest / pixels.bytesPerLine()));
  for (int y = 0; y < pixels.height(); y += rows) {
    const int count = std::min(rows, pixels.height() - y);
    xcb_put_image(server_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, id_, context_, length(pixels.width()),
                  length(count), coordinate(place.x()), coordinate(place.y() + y), 0, depth_,
                  static_cast<std::uint32_t>(pixels.bytesPerLine() * count),
                  pixels.constScanLine(y));
  }
}

QRect rootArea(XServer& server) {
  const auto geometry = geometryOf(server.get(), server.root());
  return {{}, geometry ? geometry->size : QSize()};
}

std::optional<xcb_pixmap_t> namedRootPixmap(XServer& server) {
  const auto named = server.numbers(server.root(), kNames[0]);
  if (named.empty() || named.front() == XCB_NONE) return std::nullopt;
  const auto root = geometryOf(server.get(), server.root());
  const auto pixmap = geometryOf(server.get(), named.front());
  const bool fits = root && pixmap && root->size == pixmap->size && root->depth == pixmap->depth;
  return fits ? std::optional(named.front()) : std::nullopt;
}

bool setRootPixmap(XServer& server, const RootPixmap& picture) {
  // Another connection copies from it.
  if (geometryOf(server.get(), picture.id()) == std::nullopt) return false;
  const Maker maker(xcb_connect(nullptr, nullptr));
  if (xcb_connection_has_error(maker.get()) != 0) return false;
  const xcb_window_t root = server.root();
  const xcb_pixmap_t copy = copyForEver(maker.get(), root, picture);
  if (copy == XCB_NONE) return false;
  freeFormer(server, maker.get());
  for (const char* name : kNames) {
    xcb_change_property(maker.get(), XCB_PROP_MODE_REPLACE, root, server.atom(name),
                        XCB_ATOM_PIXMAP, 32, 1, &copy);
  }
  xcb_change_window_attributes(maker.get(), root, XCB_CW_BACK_PIXMAP, &copy);
  xcb_clear_area(maker.get(), 0, root, 0, 0, 0, 0);
  return geometryOf(maker.get(), copy).has_value();
}

void setRootColour(XServer& server, std::uint32_t pixel) {
  freeFormer(server, server.get());
  for (const char* name : kNames) {
    xcb_delete_property(server.get(), server.root(), server.atom(name));
  }
  xcb_change_window_attributes(server.get(), server.root(), XCB_CW_BACK_PIXEL, &pixel);
  xcb_clear_area(server.get(), 0, server.root(), 0, 0, 0, 0);
  xcb_flush(server.get());
}

std::vector<std::uint32_t> pixelsOf(XServer& server, xcb_drawable_t drawable, const QRect& area) {
  xcb_generic_error_t* error = nullptr;
  const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
      server.get(),
      xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, coordinate(area.x()),
                    coordinate(area.y()), length(area.width()), length(area.height()), ~0U),
      &error));
  const XReply<xcb_generic_error_t> gone(error);
  const auto count =
      static_cast<std::size_t>(area.width()) * static_cast<std::size_t>(area.height());
  if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) < 4 * count) {
    return {};
  }
  std::vector<std::uint32_t> pixels(count);
  std::memcpy(pixels.data(), xcb_get_image_data(reply.get()), 4 * count);
  for (std::uint32_t& pixel : pixels) pixel &= 0xffffffU;
  return pixels;
}

std::optional<std::uint32_t> rootBackgroundAt(XServer& server, const QPoint& point) {
  xcb_connection_t* connection = server.get();
  const xcb_window_t window = xcb_generate_id(connection);
  const std::array<std::uint32_t, 2> values{XCB_BACK_PIXMAP_PARENT_RELATIVE, 1};
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, server.root(), coordinate(point.x()),
                    coordinate(point.y()), 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT,
                    values.data());
  xcb_map_window(connection, window);
  const auto pixels = pixelsOf(server, window, {0, 0, 1, 1});
  xcb_destroy_window(connection, window);
  xcb_flush(connection);
  return pixels.empty() ? std::nullopt : std::optional(pixels.front());
}

}  // namespace linux_desktop
