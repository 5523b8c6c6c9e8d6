#include "desktop/harness/Screen.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace harness {

namespace {

std::size_t indexOf(int width, int x, int y) {
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
         static_cast<std::size_t>(x);
}

Rect cut(const Rect& area, const Rect& limit) {
  const int x = std::max(area.x, limit.x);
  const int y = std::max(area.y, limit.y);
  return {x, y, std::max(0, std::min(area.right(), limit.right()) - x),
          std::max(0, std::min(area.bottom(), limit.bottom()) - y)};
}

/// 0xRRGGBB of a pixel as servers of that depth have it.
std::uint32_t colourOf(std::uint32_t pixel, int depth) {
  const auto part = [pixel](unsigned shift, unsigned most) {
    return ((pixel >> shift & most) * 0xffU + most / 2) / most;
  };
  switch (depth) {
    case 16:
      return part(11, 0x1f) << 16 | part(5, 0x3f) << 8 | part(0, 0x1f);
    case 30:
      return part(20, 0x3ff) << 16 | part(10, 0x3ff) << 8 | part(0, 0x3ff);
    default:
      return pixel & 0xffffffU;
  }
}

/// From the colour at the top to that at the bottom, each as red, green and blue.
Image gradient(int width, int height, const std::array<int, 3>& top,
               const std::array<int, 3>& bottom) {
  Image image{width, height, {}};
  for (int y = 0; y < height; ++y) {
    std::uint32_t colour = 0;
    for (std::size_t i = 0; i < top.size(); ++i) {
      const int mixed = top.at(i) + (bottom.at(i) - top.at(i)) * y / std::max(height - 1, 1);
      colour = colour << 8 | static_cast<std::uint32_t>(mixed);
    }
    image.pixels.insert(image.pixels.end(), static_cast<std::size_t>(width), colour);
  }
  return image;
}

int channel(std::uint32_t pixel, int shift) {
  return static_cast<int>(pixel >> shift & 0xff);
}

bool isEdge(std::uint32_t left, std::uint32_t right) {
  constexpr int kSharp = 24;
  for (const int shift : {0, 8, 16}) {
    if (std::abs(channel(left, shift) - channel(right, shift)) > kSharp) return true;
  }
  return false;
}

std::string whyNot(const xcb_generic_error_t* error) {
  return error == nullptr ? "the server is gone"
                          : "X error " + std::to_string(static_cast<int>(error->error_code));
}

bool liesIn(const std::vector<Rect>& areas, int x, int y) {
  return std::ranges::any_of(areas, [&](const Rect& area) { return area.contains(x, y); });
}

}  // namespace

std::uint32_t Image::at(int x, int y) const {
  return pixels.at(indexOf(width, x, y));
}

Image Image::part(const Rect& area) const {
  const Rect inside = cut(area, {0, 0, width, height});
  Image result{inside.width, inside.height, {}};
  for (int y = inside.y; y < inside.bottom(); ++y) {
    for (int x = inside.x; x < inside.right(); ++x) result.pixels.push_back(at(x, y));
  }
  return result;
}

std::optional<Rect> changedArea(const Image& before, const Image& after) {
  if (before.width != after.width || before.height != after.height)
    throw std::runtime_error("images of different sizes");
  int left = before.width;
  int top = before.height;
  int right = -1;
  int bottom = -1;
  for (int y = 0; y < before.height; ++y) {
    for (int x = 0; x < before.width; ++x) {
      if (before.at(x, y) == after.at(x, y)) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = y;
    }
  }
  if (right < 0) return std::nullopt;
  return Rect{left, top, right - left + 1, bottom - top + 1};
}

void writePng(const Image& image, const std::filesystem::path& path) {
  std::vector<std::uint8_t> rows;
  rows.reserve(image.pixels.size() * 3);
  for (const std::uint32_t pixel : image.pixels) {
    for (const unsigned shift : {16U, 8U, 0U})
      rows.push_back(static_cast<std::uint8_t>(pixel >> shift & 0xffU));
  }
  png_image header{};
  header.version = PNG_IMAGE_VERSION;
  header.width = static_cast<png_uint_32>(image.width);
  header.height = static_cast<png_uint_32>(image.height);
  header.format = PNG_FORMAT_RGB;
  if (png_image_write_to_file(&header, path.c_str(), 0, rows.data(), 0, nullptr) == 0)
    throw std::runtime_error("cannot write " + path.string() + ": " + header.message);
}

Image readPng(const std::string& bytes) {
  png_image header{};
  header.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&header, bytes.data(), bytes.size()) == 0)
    throw std::runtime_error("no picture: " + std::string(header.message));
  header.format = PNG_FORMAT_BGRA;
  Image image{static_cast<int>(header.width), static_cast<int>(header.height), {}};
  image.pixels.resize(std::size_t{header.width} * header.height);
  if (png_image_finish_read(&header, nullptr, image.pixels.data(), 0, nullptr) == 0)
    throw std::runtime_error("a bad picture: " + std::string(header.message));
  for (std::uint32_t& pixel : image.pixels) pixel &= 0xffffffU;
  return image;
}

Image imageOf(const XConnection& x, xcb_drawable_t drawable, const Rect& wanted) {
  const Rect inside = cut(wanted, x.screenArea());
  const auto cookie = xcb_get_image(
      x.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(inside.x),
      static_cast<std::int16_t>(inside.y), static_cast<std::uint16_t>(inside.width),
      static_cast<std::uint16_t>(inside.height), ~0U);
  xcb_generic_error_t* failure = nullptr;
  const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(x.get(), cookie, &failure));
  const XReply<xcb_generic_error_t> error(failure);
  if (!reply) throw std::runtime_error("the screen cannot be read: " + whyNot(error.get()));
  const std::size_t each = reply->depth > 16 ? 4 : 2;
  // Rows end at whole words.
  const std::size_t stride = (each * static_cast<std::size_t>(inside.width) + 3) / 4 * 4;
  Image image{inside.width, inside.height, {}};
  for (int y = 0; y < inside.height; ++y) {
    const std::uint8_t* row =
        xcb_get_image_data(reply.get()) + stride * static_cast<std::size_t>(y);
    for (int i = 0; i < inside.width; ++i) {
      std::uint32_t pixel = 0;
      std::memcpy(&pixel, row + each * static_cast<std::size_t>(i), each);
      image.pixels.push_back(colourOf(pixel, reply->depth));
    }
  }
  return image;
}

Image Screen::settled(const Rect& wanted, std::chrono::milliseconds calm,
                      std::chrono::milliseconds patience) const {
  using Clock = std::chrono::steady_clock;
  Image last = area(wanted);
  Clock::time_point since = Clock::now();
  const auto isStill = [&] {
    Image now = area(wanted);
    if (now == last) return true;
    last = std::move(now);
    since = Clock::now();
    return false;
  };
  until([&] { return isStill() && Clock::now() - since >= calm && home_.isAtRest() && isStill(); },
        patience);
  return last;
}

using namespace std::chrono_literals;

TrayIconFinder::TrayIconFinder(const Screen& screen, const std::vector<Rect>& panels)
    : screen_(screen) {
  for (const Rect& area : panels) panels_.push_back({area, screen.area(area)});
}

std::optional<Rect> TrayIconFinder::changed(const Panel& panel, const Image& now) const {
  std::optional<Rect> area = changedArea(panel.before, now);
  if (!area) return std::nullopt;
  area->x += panel.area.x;
  area->y += panel.area.y;
  return area;
}

std::optional<Rect> TrayIconFinder::find(std::chrono::milliseconds patience) const {
  std::optional<Rect> icon;
  const auto look = [&] {
    for (const Panel& panel : panels_) {
      if (!changed(panel, screen_.area(panel.area))) continue;
      icon = changed(panel, screen_.settled(panel.area, 150ms, kPatience));
      if (icon) return true;
    }
    return false;
  };
  until(look, patience);
  return icon;
}

Image plain(std::uint32_t colour, int width, int height) {
  return {width, height, std::vector<std::uint32_t>(indexOf(width, 0, height), colour)};
}

Image dusk(int width, int height) {
  return gradient(width, height, {44, 62, 108}, {186, 120, 110});
}

Image meadow(int width, int height) {
  return gradient(width, height, {120, 176, 208}, {58, 118, 84});
}

void furnish(const PrivateHome& home) {
  writePng(dusk(1280, 720), home.home() / "dusk.png");
  writePng(meadow(1600, 900), home.home() / "meadow.png");
  const std::filesystem::path desktop = home.home() / "Desktop";
  std::filesystem::create_directories(desktop);
  for (const char* name : {"Salaries.ods", "Draft letter.txt"})
    std::ofstream(desktop / name) << name << '\n';
}

bool showsIcons(const Image& image, const std::vector<Rect>& apart) {
  constexpr int kFewest = 50;
  int edges = 0;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 1; x < image.width; ++x) {
      if (isEdge(image.at(x - 1, y), image.at(x, y)) && !liesIn(apart, x, y)) ++edges;
    }
  }
  return edges >= kFewest;
}

bool isOf(Image (*picture)(int width, int height), std::uint32_t colour) {
  return std::ranges::any_of(picture(1, 100).pixels,
                             [&](std::uint32_t row) { return alike(colour, row); });
}

bool alike(std::uint32_t one, std::uint32_t other) {
  constexpr int kLittle = 8;
  return std::ranges::all_of(std::array{0, 8, 16}, [&](int shift) {
    return std::abs(channel(one, shift) - channel(other, shift)) <= kLittle;
  });
}

}  // namespace harness
