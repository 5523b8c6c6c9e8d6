#include "desktop/linux/x11/RootBackground.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace linux_desktop {
namespace {

/// Where the picture is named; the second says that it may be freed by the next who sets one.
constexpr std::array kNames{"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"};

xcb_pixmap_t named(XServer& server, const char* property = kNames.front()) {
  return server.number(server.root(), property).value_or(XCB_NONE);
}

struct Geometry {
  QSize size;
  std::uint8_t depth = 0;
};

std::optional<Geometry> geometryOf(xcb_connection_t* connection, xcb_drawable_t drawable) {
  const XReply<xcb_get_geometry_reply_t> reply(
      xcb_get_geometry_reply(connection, xcb_get_geometry(connection, drawable), nullptr));
  if (!reply) return std::nullopt;
  return Geometry{{reply->width, reply->height}, reply->depth};
}

/// What its maker left for ever goes when that maker is "killed": the custom of all who set one.
void freeFormer(XServer& server, xcb_pixmap_t next) {
  const xcb_pixmap_t former = named(server);
  if (former != next && former == named(server, kNames.back())) dropRootPixmap(server, former);
}

void clearRoot(XServer& server) {
  xcb_clear_area(server.get(), 0, server.root(), 0, 0, 0, 0);
  xcb_flush(server.get());
}

/// Whether every row of the image is the first one, and that one pixel over and over.
bool isOnePixel(const std::uint8_t* first, std::size_t width, std::size_t stride, int rows) {
  if (std::memcmp(first, first + stride / width, stride / width * (width - 1)) != 0) return false;
  for (int row = 1; row < rows; ++row) {
    const std::uint8_t* other = first + stride * static_cast<std::size_t>(row);
    if (std::memcmp(first, other, stride / width * width) != 0) return false;
  }
  return true;
}

}  // namespace

bool isRootPictureNamed(XServer& server) {
  return named(server) != XCB_NONE;
}

std::optional<ForeignPixmap> namedRootPixmap(XServer& server) {
  const xcb_pixmap_t id = named(server);
  if (id == XCB_NONE) return std::nullopt;
  const auto root = geometryOf(server.get(), server.root());
  const auto pixmap = geometryOf(server.get(), id);
  if (!root || !pixmap || root->size != pixmap->size) return std::nullopt;
  return ForeignPixmap{id, pixmap->depth};
}

std::unique_ptr<XEvents::Watch> watchRootPicture(XEvents& events, std::function<void()> changed) {
  return events.watchProperty(events.server().root(), kNames.front(), std::move(changed));
}

bool copyRootBackground(XServer& server, const QRect& area, xcb_drawable_t into) {
  if (server.screen().backing_stores == XCB_BACKING_STORE_NOT_USEFUL) return false;
  xcb_connection_t* connection = server.get();
  const XContext context(server, into);
  const xcb_window_t window = xcb_generate_id(connection);
  const std::array<std::uint32_t, 3> values{XCB_BACK_PIXMAP_PARENT_RELATIVE,
                                            XCB_BACKING_STORE_ALWAYS, 1};
  const std::uint32_t below = XCB_STACK_MODE_BELOW;
  const auto width = static_cast<std::uint16_t>(area.width());
  const auto height = static_cast<std::uint16_t>(area.height());
  // A window at the very bottom, with the root window's background for its own: the server paints
  // it all, since it keeps what others hide of it. It is gone before anybody else hears of it.
  xcb_grab_server(connection);
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, server.root(),
                    static_cast<std::int16_t>(area.x()), static_cast<std::int16_t>(area.y()), width,
                    height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_BACK_PIXMAP | XCB_CW_BACKING_STORE | XCB_CW_OVERRIDE_REDIRECT,
                    values.data());
  xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_STACK_MODE, &below);
  xcb_map_window(connection, window);
  const auto copied =
      xcb_copy_area_checked(connection, window, into, context.id(), 0, 0, 0, 0, width, height);
  xcb_destroy_window(connection, window);
  xcb_ungrab_server(connection);
  return succeeded(server, copied);
}

std::optional<xcb_pixmap_t> newRootPixmap(XServer& server) {
  // What a connection leaves for ever is all that it has made.
  const XConnection maker(xcb_connect(nullptr, nullptr));
  const auto root = geometryOf(server.get(), server.root());
  if (!root || xcb_connection_has_error(maker.get()) != 0) return std::nullopt;
  const xcb_pixmap_t pixmap = xcb_generate_id(maker.get());
  xcb_create_pixmap(maker.get(), root->depth, pixmap, server.root(),
                    static_cast<std::uint16_t>(root->size.width()),
                    static_cast<std::uint16_t>(root->size.height()));
  xcb_set_close_down_mode(maker.get(), XCB_CLOSE_DOWN_RETAIN_PERMANENT);
  if (!geometryOf(maker.get(), pixmap)) return std::nullopt;
  if (copyRootBackground(server, {{}, root->size}, pixmap)) return pixmap;
  dropRootPixmap(server, pixmap);
  return std::nullopt;
}

void dropRootPixmap(XServer& server, xcb_pixmap_t pixmap) {
  if (pixmap != XCB_NONE) xcb_kill_client(server.get(), pixmap);
}

void showRootPixmap(XServer& server, xcb_pixmap_t pixmap) {
  freeFormer(server, pixmap);
  xcb_change_window_attributes(server.get(), server.root(), XCB_CW_BACK_PIXMAP, &pixmap);
  for (const char* name : kNames) {
    server.setNumbers(server.root(), name, XCB_ATOM_PIXMAP, {pixmap});
  }
  clearRoot(server);
}

void showRootColour(XServer& server, std::uint32_t pixel) {
  freeFormer(server, XCB_NONE);
  for (const char* name : kNames) {
    server.setNumbers(server.root(), name, XCB_ATOM_PIXMAP, {});
  }
  xcb_change_window_attributes(server.get(), server.root(), XCB_CW_BACK_PIXEL, &pixel);
  clearRoot(server);
}

std::optional<std::uint32_t> onlyPixel(XServer& server, xcb_pixmap_t pixmap) {
  constexpr int kRowsAtOnce = 128;
  const auto geometry = geometryOf(server.get(), pixmap);
  const QSize size = geometry ? geometry->size : QSize();
  std::optional<std::uint32_t> only;
  for (int top = 0; top < size.height(); top += kRowsAtOnce) {
    const int rows = std::min(kRowsAtOnce, size.height() - top);
    const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        server.get(),
        xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, 0,
                      static_cast<std::int16_t>(top), static_cast<std::uint16_t>(size.width()),
                      static_cast<std::uint16_t>(rows), ~0U),
        nullptr));
    if (!reply) return std::nullopt;
    const std::uint8_t* data = xcb_get_image_data(reply.get());
    const auto stride = static_cast<std::size_t>(xcb_get_image_data_length(reply.get()) / rows);
    const auto width = static_cast<std::size_t>(size.width());
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, data, std::min(stride / width, sizeof pixel));
    if (only.value_or(pixel) != pixel || !isOnePixel(data, width, stride, rows)) {
      return std::nullopt;
    }
    only = pixel;
  }
  return only;
}

}  // namespace linux_desktop
