#include <gtest/gtest.h>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"
#include "platform/appkit/NSAnimationContext.h"
#include "platform/appkit/NSView.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

TEST(AnimationCurveTest, RisesFromNothingToAllThroughTheKnownPoints) {
  EXPECT_EQ(animationProgress(-1ms, 100ms), 0);
  EXPECT_EQ(animationProgress(0ms, 100ms), 0);
  EXPECT_EQ(animationProgress(100ms, 100ms), 1);
  EXPECT_EQ(animationProgress(1s, 100ms), 1);
  EXPECT_EQ(animationProgress(1ms, 0ms), 1);
  EXPECT_NEAR(animationProgress(25ms, 100ms), 0.40851, 1e-5);
  EXPECT_NEAR(animationProgress(50ms, 100ms), 0.80240, 1e-5);
  EXPECT_NEAR(animationProgress(75ms, 100ms), 0.96046, 1e-5);
  double last = 0;
  for (int i = 1; i <= 1000; ++i) {
    const double progress = animationProgress(i * 1ms, 1s);
    EXPECT_GT(progress, last) << i;
    last = progress;
  }
}

class AnimationTest : public ::testing::Test {
 protected:
  AnimationTest() {
    view->setWantsLayer(true);
    view->setFrame({0, 0, 10, 10});
  }
  /// Runs `changes` in a group of 100 ms.
  void animate(const std::function<void()>& changes, std::function<void()> completion = {}) {
    NSAnimationContext::runAnimationGroup(
        [&changes](NSAnimationContext& context) {
          context.setDuration(0.1);
          context.setAllowsImplicitAnimation(true);
          changes();
        },
        std::move(completion));
  }
  [[nodiscard]] NSRect onScreen() const { return view->presentationFrame(desk.loop.now()); }
  [[nodiscard]] CALayer::Presentation layer() const {
    return view->layer()->presentation(desk.loop.now());
  }

  simulated::SimulatedDesktop desk;
  Runtime runtime{desk};
  std::shared_ptr<NSView> view = std::make_shared<NSView>();
};

TEST_F(AnimationTest, OnlyAGroupThatAllowsItAnimates) {
  view->setFrame({5, 0, 10, 10});
  EXPECT_EQ(onScreen().x, 5);
  NSAnimationContext::runAnimationGroup([this](NSAnimationContext&) {
    view->setFrame({6, 0, 10, 10});
  });
  EXPECT_EQ(onScreen().x, 6);
  animate([this] { view->setFrame({26, 0, 10, 10}); });
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

TEST_F(AnimationTest, TheInnerOfTwoGroupsHolds) {
  animate([this] {
    NSAnimationContext::runAnimationGroup([this](NSAnimationContext&) {
      view->setFrame({20, 0, 10, 10});
    });
    EXPECT_EQ(onScreen().x, 20);
    view->layer()->setBorderWidth(4);
    EXPECT_EQ(layer().borderWidth, 0);
  });
}

TEST_F(AnimationTest, CompletionsRunOnceWhenTheirGroupsTimeHasPassed) {
  std::vector<int> completed;
  animate([this] { view->setFrame({20, 0, 10, 10}); }, [&] { completed.push_back(1); });
  desk.loop.advance(50ms);
  animate([this] { view->setFrame({0, 0, 10, 10}); }, [&] { completed.push_back(2); });
  desk.loop.advance(49ms);
  EXPECT_EQ(completed, std::vector<int>{});
  desk.loop.advance(1ms);
  EXPECT_EQ(completed, std::vector<int>{1});
  desk.loop.advance(1s);
  EXPECT_EQ(completed, (std::vector<int>{1, 2}));
}

TEST_F(AnimationTest, ALayersLookAnimatesAndThemeColoursDoNot) {
  animate([this] {
    view->layer()->setBorderColor(NSColor::whiteColor());
    view->layer()->setBackgroundColor(NSSystemColor::ControlAccent);
    view->layer()->setCornerRadius(10);
  });
  EXPECT_EQ(layer().borderColor, NSColor::blackColor());
  EXPECT_EQ(layer().backgroundColor, NSColor(NSSystemColor::ControlAccent));
  desk.loop.advance(50ms);
  EXPECT_NEAR(layer().borderColor.rgba()->green, 0.80240, 1e-5);
  EXPECT_NEAR(layer().cornerRadius, 8.0240, 1e-4);
  desk.loop.advance(50ms);
  EXPECT_EQ(layer().borderColor, NSColor::whiteColor());
}

TEST_F(AnimationTest, AnAnimationMovesOnWhileTheProgramSleeps) {
  animate([this] { view->setFrame({20, 0, 10, 10}); });
  double halfway = 0;
  desk.loop.at(50ms, [&] { halfway = onScreen().x; });
  desk.loop.sleep(1s);
  EXPECT_NEAR(halfway, 20 * 0.80240, 1e-3);
}

TEST_F(AnimationTest, AViewAppearsAtItsFirstPlace) {
  const auto fresh = std::make_shared<NSView>();
  animate([&] { fresh->setFrame({20, 0, 10, 10}); });
  EXPECT_EQ(fresh->presentationFrame(desk.loop.now()), (NSRect{20, 0, 10, 10}));
}

}  // namespace
}  // namespace platform
