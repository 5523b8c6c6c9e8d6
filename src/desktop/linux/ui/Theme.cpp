#include "desktop/linux/ui/Theme.h"

#include <QApplication>
#include <QFontInfo>
#include <algorithm>
#include <array>
#include <cmath>

namespace linux_desktop {

using platform::NSColor;
using platform::NSSystemColor;
using platform::NSTextStyle;

namespace {

double linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

QColor mixed(const QColor& from, const QColor& to, double share) {
  const auto channel = [share](double a, double b) {
    return static_cast<float>(a + (b - a) * share);
  };
  return QColor::fromRgbF(channel(from.redF(), to.redF()), channel(from.greenF(), to.greenF()),
                          channel(from.blueF(), to.blueF()));
}

QColor withLightness(const QColor& color, double lightness) {
  const QColor hsl = color.toHsl();
  return QColor::fromHslF(std::max(hsl.hslHueF(), 0.0F), hsl.hslSaturationF(),
                          static_cast<float>(std::clamp(lightness, 0.0, 1.0)))
      .toRgb();
}

/// `color`, lighter or darker by as little as makes `fits` true; itself where nothing does.
template <typename Fits>
QColor nearest(const QColor& color, const Fits& fits) {
  constexpr int kSteps = 100;
  const double lightness = color.toHsl().lightnessF();
  for (int step = 0; step <= kSteps; ++step) {
    const double distance = static_cast<double>(step) / kSteps;
    for (const double candidate : {lightness - distance, lightness + distance}) {
      const QColor result = withLightness(color, candidate);
      if (fits(result)) return result;
    }
  }
  return color;
}

struct StyleRow {
  NSTextStyle style;
  double scale;
  QFont::Weight weight;
};

constexpr std::array kStyles{
    StyleRow{NSTextStyle::Body, 1.0, QFont::Normal},
    StyleRow{NSTextStyle::Title, 1.3, QFont::DemiBold},
    StyleRow{NSTextStyle::Headline, 1.0, QFont::DemiBold},
    StyleRow{NSTextStyle::Caption, 0.9, QFont::Normal},
};

}  // namespace

double contrast(const QColor& one, const QColor& other) {
  const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
  return (light + 0.05) / (dark + 0.05);
}

QColor Theme::color(const NSColor& color) const {
  NSColor::RGBA sum = color.fixedPart();
  for (std::size_t i = 0; i < color.themeShares().size(); ++i) {
    const double share = color.themeShares()[i];
    if (share == 0) continue;
    const QColor part = system(static_cast<NSSystemColor>(i));
    sum.red += share * part.redF();
    sum.green += share * part.greenF();
    sum.blue += share * part.blueF();
    sum.alpha += share * part.alphaF();
  }
  return QColor::fromRgbF(static_cast<float>(sum.red), static_cast<float>(sum.green),
                          static_cast<float>(sum.blue), static_cast<float>(sum.alpha));
}

QColor Theme::system(NSSystemColor color) const {
  switch (color) {
    case NSSystemColor::Label:
      return text();
    case NSSystemColor::SecondaryLabel:
      return secondaryText();
    case NSSystemColor::Separator:
      return mixed(window(), text(), 0.18);
    case NSSystemColor::WindowBackground:
      return window();
    case NSSystemColor::ControlAccent:
      return accent();
  }
  return text();
}

QColor Theme::text() const {
  return palette_.color(QPalette::Active, QPalette::WindowText);
}

QColor Theme::secondaryText() const {
  for (const double share : {0.35, 0.3, 0.25, 0.2, 0.15, 0.1, 0.05}) {
    const QColor candidate = mixed(text(), window(), share);
    if (contrast(candidate, window()) >= kTextContrast) return candidate;
  }
  return text();
}

// White shapes stand on the accent, and it stands on the window.
QColor Theme::accent() const {
  const QColor highlight = palette_.color(QPalette::Active, QPalette::Highlight);
  return nearest(highlight, [this](const QColor& candidate) {
    return contrast(candidate, Qt::white) >= kShapeContrast &&
           contrast(candidate, window()) >= kShapeContrast;
  });
}

QColor Theme::standingOut(const QColor& color) const {
  return nearest(color, [this](const QColor& candidate) {
    return contrast(candidate, window()) >= kShapeContrast;
  });
}

QColor Theme::mark(const NSColor& color) const {
  return standingOut(this->color(color));
}

QColor Theme::focusRing() const {
  return standingOut(palette_.color(QPalette::Active, QPalette::Highlight));
}

QFont fontFor(NSTextStyle style, QFont base) {
  const auto* row = std::ranges::find(kStyles, style, &StyleRow::style);
  if (base.pixelSize() > 0) {
    base.setPixelSize(static_cast<int>(std::lround(base.pixelSize() * row->scale)));
  } else {
    base.setPointSizeF(base.pointSizeF() * row->scale);
  }
  base.setWeight(row->weight);
  return base;
}

double textScale() {
  // 11 points on most screens; desktops come with 9 to 11.
  constexpr double kUsual = 15;
  return std::max(1.0, QFontInfo(QApplication::font()).pixelSize() / kUsual);
}

}  // namespace linux_desktop
