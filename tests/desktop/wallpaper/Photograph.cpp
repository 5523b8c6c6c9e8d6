#include "desktop/wallpaper/Photograph.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>

namespace wallpaper_test {

QImage photograph(int width, int height) {
  std::mt19937 random(7);
  QImage image(width, height, QImage::Format_RGB32);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double across = static_cast<double>(x) / width;
      const double down = static_cast<double>(y) / height;
      const int grain = static_cast<int>(random() % 9U);
      const bool onLine = (x + y) % 97 == 0 || (x - 2 * y) % 131 == 0;
      const auto part = [&](double wave) {
        const double soft = 100 + 70 * std::sin(wave);
        return std::clamp(static_cast<int>(soft) + grain + (onLine ? 60 : 0), 0, 255);
      };
      image.setPixel(x, y,
                     qRgb(part(9 * across + 5 * down), part(14 * down * across),
                          part(21 * across - 8 * down * down)));
    }
  }
  return image;
}

double percentApart(const QImage& picture, const harness::Image& screen) {
  constexpr int kMost = 8;
  if (picture.width() != screen.width || picture.height() != screen.height) return 100;
  std::size_t apart = 0;
  for (int y = 0; y < screen.height; ++y) {
    for (int x = 0; x < screen.width; ++x) {
      const QRgb one = picture.pixel(x, y);
      const QRgb other = screen.at(x, y);
      const bool differs = std::abs(qRed(one) - qRed(other)) > kMost ||
                           std::abs(qGreen(one) - qGreen(other)) > kMost ||
                           std::abs(qBlue(one) - qBlue(other)) > kMost;
      if (differs) ++apart;
    }
  }
  return 100.0 * static_cast<double>(apart) / static_cast<double>(screen.pixels.size());
}

}  // namespace wallpaper_test
