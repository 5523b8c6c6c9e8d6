#include <gtest/gtest.h>

#include "platform/appkit/NSAnimationContext.h"
#include "platform/appkit/NSView.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

TEST(AnimationCurveTest, RisesFromNothingToAllThroughTheKnownPoints) {
  const std::pair<Duration, double> rows[] = {
      {-1ms, 0}, {0ms, 0}, {25ms, 0.40851}, {50ms, 0.80240}, {75ms, 0.96046}, {100ms, 1}, {1s, 1}};
  for (const auto& [time, progress] : rows) {
    EXPECT_NEAR(animationProgress(time, 100ms), progress, 1e-5);
  }
  EXPECT_EQ(animationProgress(1ms, 0ms), 1);
}

class AnimationTest : public tests::DeskTest {
 protected:
  AnimationTest() {
    view->setWantsLayer(true);
    view->setFrame({0, 0, 10, 10});
  }
  /// Runs `changes` in a group of 100 ms.
  void animate(const std::function<void()>& changes) {
    NSAnimationContext::runAnimationGroup([&changes](NSAnimationContext& context) {
      context.setDuration(0.1);
      context.setAllowsImplicitAnimation(true);
      changes();
    });
  }
  [[nodiscard]] NSRect onScreen() const { return view->presentationFrame(desk.loop.now()); }
  [[nodiscard]] CALayer::Presentation layer() const {
    return view->layer()->presentation(desk.loop.now());
  }
  [[nodiscard]] double shareOf(NSSystemColor color) const {
    return layer().backgroundColor.themeShares().at(static_cast<std::size_t>(color));
  }

  std::shared_ptr<NSView> view = std::make_shared<NSView>();
};

TEST_F(AnimationTest, OnlyAGroupThatAllowsItAnimates) {
  view->setFrame({5, 0, 10, 10});
  EXPECT_EQ(onScreen().x, 5);
  animate([this] {
    // The inner of two groups holds.
    NSAnimationContext::runAnimationGroup([this](NSAnimationContext&) {
      view->setFrame({6, 0, 10, 10});
    });
    EXPECT_EQ(onScreen().x, 6);
    view->setFrame({26, 0, 10, 10});
  });
  EXPECT_EQ(view->frame().x, 26);
  EXPECT_EQ(onScreen().x, 6);
  desk.loop.advance(50ms);
  EXPECT_NEAR(onScreen().x, 6 + 20 * 0.80240, 1e-3);
  EXPECT_TRUE(view->isAnimating(desk.loop.now()));
  desk.loop.advance(50ms);
  EXPECT_EQ(onScreen().x, 26);
  EXPECT_FALSE(view->isAnimating(desk.loop.now()));
}

TEST_F(AnimationTest, AChangeAtOnceEndsWhatWasRunning) {
  animate([this] { view->setFrame({20, 0, 10, 10}); });
  desk.loop.advance(50ms);
  view->setFrame({3, 0, 10, 10});
  EXPECT_EQ(onScreen().x, 3);
  EXPECT_FALSE(view->isAnimating(desk.loop.now()));
}

TEST_F(AnimationTest, ALayersLookAnimatesAndColoursOfTheThemeBlend) {
  animate([this] {
    view->layer()->setBorderColor(NSColor::whiteColor());
    view->layer()->setBackgroundColor(NSSystemColor::ControlAccent);
    view->layer()->setCornerRadius(10);
  });
  EXPECT_EQ(layer().borderColor, NSColor::blackColor());
  EXPECT_EQ(layer().backgroundColor, (NSColor::RGBA{0, 0, 0, 0}));
  desk.loop.advance(50ms);
  EXPECT_NEAR(layer().borderColor.rgba()->green, 0.80240, 1e-5);
  EXPECT_NEAR(layer().cornerRadius, 8.0240, 1e-4);
  EXPECT_NEAR(shareOf(NSSystemColor::ControlAccent), 0.80240, 1e-5);
  animate([this] { view->layer()->setBackgroundColor(NSColor::whiteColor()); });
  EXPECT_NEAR(shareOf(NSSystemColor::ControlAccent), 0.80240, 1e-5) << "from where it was";
  desk.loop.advance(50ms);
  EXPECT_NEAR(shareOf(NSSystemColor::ControlAccent), 0.80240 * (1 - 0.80240), 1e-5);
  EXPECT_NEAR(layer().backgroundColor.fixedPart().green, 0.80240, 1e-5);
  EXPECT_EQ(layer().borderColor, NSColor::whiteColor());
  desk.loop.advance(50ms);
  EXPECT_EQ(layer().backgroundColor, NSColor::whiteColor());
}

TEST_F(AnimationTest, AViewAppearsAtItsFirstPlace) {
  const auto fresh = std::make_shared<NSView>();
  animate([&] { fresh->setFrame({20, 0, 10, 10}); });
  EXPECT_EQ(fresh->presentationFrame(desk.loop.now()), (NSRect{20, 0, 10, 10}));
}

}  // namespace
}  // namespace platform
