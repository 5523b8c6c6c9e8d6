#include "desktop/harness/SoftPictures.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace harness {

namespace {

struct Colour {
  int red;
  int green;
  int blue;
};

Image gradient(int width, int height, const Colour& top, const Colour& bottom) {
  const auto mix = [height](int first, int last, int y) {
    return static_cast<std::uint32_t>(first + (last - first) * y / std::max(height - 1, 1));
  };
  Image image{width, height, {}};
  image.pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    const std::uint32_t colour = mix(top.red, bottom.red, y) << 16 |
                                 mix(top.green, bottom.green, y) << 8 |
                                 mix(top.blue, bottom.blue, y);
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

bool liesIn(const std::vector<Rect>& areas, int x, int y) {
  return std::ranges::any_of(areas, [&](const Rect& area) { return area.contains(x, y); });
}

}  // namespace

Image dusk(int width, int height) {
  return gradient(width, height, {44, 62, 108}, {186, 120, 110});
}

Image meadow(int width, int height) {
  return gradient(width, height, {120, 176, 208}, {58, 118, 84});
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

bool alike(std::uint32_t one, std::uint32_t other) {
  constexpr int kLittle = 8;
  return std::ranges::all_of(std::array{0, 8, 16}, [&](int shift) {
    return std::abs(channel(one, shift) - channel(other, shift)) <= kLittle;
  });
}

}  // namespace harness
