#include "desktop/linux/ui/Theme.h"

#include <gtest/gtest.h>

#include <array>

#include "desktop/ui/UiTest.h"

namespace linux_desktop {
namespace {

using platform::NSSystemColor;
using platform::NSTextStyle;

struct Row {
  const char* name;
  QColor window;
  QColor text;
  QColor highlight;
};

const std::array kPalettes{
    Row{"light", {239, 239, 239}, {0, 0, 0}, {48, 140, 198}},
    Row{"dark", {45, 45, 48}, {240, 240, 240}, {42, 130, 218}},
    Row{"dark with a dark highlight", {30, 30, 30}, {255, 255, 255}, {20, 40, 80}},
    Row{"light with a light highlight", {255, 255, 255}, {60, 60, 60}, {255, 220, 120}},
    Row{"little contrast of its own", {200, 200, 200}, {90, 90, 90}, {128, 128, 128}},
};

class ThemeTest : public ui_test::UiTest {};

TEST_F(ThemeTest, ColoursKeepTheirContrastInEveryPalette) {
  for (const Row& row : kPalettes) {
    QPalette palette;
    palette.setColor(QPalette::Window, row.window);
    palette.setColor(QPalette::WindowText, row.text);
    palette.setColor(QPalette::Highlight, row.highlight);
    const Theme theme(palette);
    const double text = contrast(row.text, row.window);
    const QColor secondary = theme.color(NSSystemColor::SecondaryLabel);
    EXPECT_EQ(theme.color(NSSystemColor::Label), row.text) << row.name;
    EXPECT_GE(contrast(secondary, row.window), std::min(text, kTextContrast)) << row.name;
    EXPECT_GE(contrast(theme.focusRing(), row.window), kShapeContrast) << row.name;
    if (contrast(Qt::white, row.window) >= kShapeContrast * kShapeContrast ||
        contrast(Qt::white, row.window) < 2) {
      const QColor accent = theme.color(NSSystemColor::ControlAccent);
      EXPECT_GE(contrast(accent, Qt::white), kShapeContrast) << row.name;
      EXPECT_GE(contrast(accent, row.window), kShapeContrast - 0.01) << row.name;
    }
  }
}

TEST_F(ThemeTest, TextStylesFollowTheDesktopsFontInPointsAndInPixels) {
  QFont points(QStringLiteral("Sans"), 10);
  EXPECT_DOUBLE_EQ(fontFor(NSTextStyle::Title, points).pointSizeF(), 13);
  EXPECT_DOUBLE_EQ(fontFor(NSTextStyle::Body, points).pointSizeF(), 10);
  EXPECT_GT(fontFor(NSTextStyle::Headline, points).weight(), QFont::Normal);
  QFont pixels;
  pixels.setPixelSize(20);
  EXPECT_EQ(fontFor(NSTextStyle::Caption, pixels).pixelSize(), 18);
}

}  // namespace
}  // namespace linux_desktop
