#include "desktop/linux/ui/LayerPainter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <array>

#include "desktop/linux/ui/Theme.h"
#include "desktop/ui/UiTest.h"
#include "platform/appkit/NSAnimationContext.h"

namespace linux_desktop {
namespace {

using platform::NSColor;
using platform::NSSystemColor;
using platform::NSTextStyle;
using platform::NSView;
using ui_test::make;
using ui_test::UiTest;
using namespace std::chrono_literals;

constexpr QPointF kLowerLeft{10, 40};

/// A picture in which the lower left corner of the painted view is at kLowerLeft.
struct Picture {
  QImage image;
  double ratio;

  /// The colour at a point of the view, y up.
  [[nodiscard]] QColor at(double x, double y) const {
    return image.pixelColor(static_cast<int>((kLowerLeft.x() + x) * ratio),
                            static_cast<int>((kLowerLeft.y() - y) * ratio));
  }
};

Picture paint(const NSView& view, platform::MonotonicTime time, double ratio = 1) {
  QImage image(QSize(80, 60) * ratio, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::white);
  QPainter painter(&image);
  QPalette palette;
  palette.setColor(QPalette::Window, Qt::white);
  const Theme theme(palette);
  LayerPainter(painter, theme, time).paint(view, kLowerLeft);
  return {image, ratio};
}

std::shared_ptr<NSView> layered(platform::NSRect frame, NSColor fill) {
  auto view = std::make_shared<NSView>();
  view->setFrame(frame);
  view->setWantsLayer(true);
  view->layer()->setBackgroundColor(fill);
  return view;
}

const NSColor kRed{NSColor::RGBA{1, 0, 0, 1}};
const NSColor kGreen{NSColor::RGBA{0, 1, 0, 1}};
const NSColor kBlue{NSColor::RGBA{0, 0, 1, 1}};

class LayerPainterTest : public UiTest {};

TEST_F(LayerPainterTest, BorderAsWideAsHalfTheViewFillsItWithoutFringe) {
  const auto view = layered({0, 0, 34, 16}, kRed);
  view->layer()->setCornerRadius(8);
  view->layer()->setBorderWidth(8);
  view->layer()->setBorderColor(kGreen);
  const Picture picture = paint(*view, {}, 2);
  EXPECT_EQ(picture.at(17, 8), QColor(Qt::green));
  for (int y = 0; y < picture.image.height(); ++y) {
    for (int x = 0; x < picture.image.width(); ++x) {
      const QColor color = picture.image.pixelColor(x, y);
      // White edges blend to green by losing red; a fringe of the fill would have red over blue.
      ASSERT_NEAR(color.red(), color.blue(), 2) << x << ", " << y;
    }
  }
}

TEST_F(LayerPainterTest, CornersAreRoundAndSubviewsStandOnTheirLowerLeft) {
  const auto view = layered({0, 0, 40, 30}, kRed);
  view->layer()->setCornerRadius(10);
  view->addSubview(layered({2, 12, 6, 4}, kBlue));
  const Picture picture = paint(*view, {});
  EXPECT_EQ(picture.at(0.5, 0.5), QColor(Qt::white));
  EXPECT_EQ(picture.at(39, 29), QColor(Qt::white));
  EXPECT_EQ(picture.at(3, 13), QColor(Qt::blue));
  EXPECT_EQ(picture.at(3, 17.5), QColor(Qt::red));
  view->subviews().front()->setHidden(true);
  EXPECT_EQ(paint(*view, {}).at(3, 13), QColor(Qt::red));

  view->addSubview(layered({30, 12, 20, 4}, kBlue));
  EXPECT_EQ(paint(*view, {}).at(45, 13), QColor(Qt::blue));
  view->layer()->setMasksToBounds(true);
  EXPECT_EQ(paint(*view, {}).at(45, 13), QColor(Qt::white)) << "cut off at the edge";
  EXPECT_EQ(paint(*view, {}).at(35, 13), QColor(Qt::blue));
  view->setContentScale(1.5);
  EXPECT_EQ(paint(*view, {}).at(52, 20), QColor(Qt::blue)) << "larger from the lower left";
}

TEST_F(LayerPainterTest, ShadowFallsBelowAndFadesOut) {
  const auto view = layered({0, 0, 20, 20}, kRed);
  platform::NSShadow shadow;
  shadow.setShadowOffset({0, -6});
  shadow.setShadowBlurRadius(4);
  view->setShadow(shadow);
  const Picture picture = paint(*view, {});
  const int near = picture.at(10, -3).lightness();
  const int edge = picture.at(10, -7).lightness();
  EXPECT_LT(near, 60);
  EXPECT_GT(edge, near);
  EXPECT_LT(edge, 255);
  EXPECT_EQ(picture.at(10, -15), QColor(Qt::white));
  EXPECT_EQ(picture.at(10, 23), QColor(Qt::white));
  EXPECT_EQ(picture.at(10, 10), QColor(Qt::red));
}

TEST_F(LayerPainterTest, ColourOnItsWayToOneOfTheThemesIsPaintedBetweenTheTwo) {
  const auto view = layered({0, 0, 20, 20}, kRed);
  const platform::MonotonicTime start = loop.now();
  platform::NSAnimationContext::runAnimationGroup([&](platform::NSAnimationContext& context) {
    context.setDuration(100);  // however long it takes to get here
    context.setAllowsImplicitAnimation(true);
    view->layer()->setBackgroundColor(NSSystemColor::WindowBackground);
  });
  EXPECT_EQ(paint(*view, start).at(10, 10), QColor(Qt::red));
  const QColor middle = paint(*view, start + 50s).at(10, 10);  // 0.8024 of the way to white
  EXPECT_EQ(middle.red(), 255);
  EXPECT_NEAR(middle.green(), 205, 3);
  EXPECT_NEAR(middle.blue(), 205, 3);
  EXPECT_EQ(paint(*view, loop.now() + 100s).at(10, 10), QColor(Qt::white));
}

TEST_F(LayerPainterTest, SwitchIsPaintedFromWhereTheSlideIs) {
  const auto toggle = make<controls::CToggleButton>({});
  toggle->setBackColor(NSColor::whiteColor());
  toggle->setOutlineColor(kBlue);
  toggle->setFillColor(kGreen);
  toggle->setToggleColor(kRed);
  toggle->setHasToggleBorder(false);
  toggle->layoutSubtreeIfNeeded();
  const Picture off = paint(*toggle, loop.now());
  EXPECT_EQ(off.at(8, 8), QColor(Qt::red));
  EXPECT_EQ(off.at(32.5, 8), QColor(Qt::blue));
  EXPECT_EQ(off.at(25, 8), QColor(Qt::white));
  EXPECT_EQ(off.at(33.5, 15.5), QColor(Qt::white)) << "a view without a layer has no look";

  const platform::MonotonicTime before = loop.now();
  toggle->setIsOn(true);
  const platform::MonotonicTime after = loop.now();
  const Picture start = paint(*toggle, before);
  EXPECT_EQ(start.at(6, 8), QColor(Qt::red));
  // The knob's middle travels from 8 to 26; the default curve has it at 22 to 23 by half time.
  const Picture middle = paint(*toggle, before + 150ms);
  EXPECT_EQ(middle.at(22, 8), QColor(Qt::red));
  EXPECT_NE(middle.at(8, 8), QColor(Qt::red));
  EXPECT_NE(middle.at(31, 8), QColor(Qt::red));
  const Picture end = paint(*toggle, after + 300ms);
  EXPECT_EQ(end.at(26, 8), QColor(Qt::red));
  EXPECT_EQ(end.at(10, 8), QColor(Qt::green));
  EXPECT_EQ(end.at(17, 14), QColor(Qt::green));
}

// --- Colours and fonts ---

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

class ThemeTest : public UiTest {};

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
