#include <gtest/gtest.h>

#include "platform/appkit/NSAnimationContext.h"
#include "platform/appkit/NSView.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

class LayoutTest : public tests::DeskTest {
 protected:
  static std::shared_ptr<NSView> constrained(NSView& parent) {
    auto view = std::make_shared<NSView>();
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    parent.addSubview(view);
    return view;
  }
  static void equal(const NSLayoutAnchor& first, const NSLayoutAnchor& second,
                    double constant = 0) {
    first.constraintEqualToAnchor(second, constant)->setActive(true);
  }
  static void fix(const NSLayoutAnchor& anchor, double constant) {
    anchor.constraintEqualToConstant(constant)->setActive(true);
  }

  std::shared_ptr<NSView> root = std::make_shared<NSView>();
};

TEST_F(LayoutTest, EdgesCentresAndSizesFollowFromEachOther) {
  root->setFrame({7, 9, 100, 50});
  const auto a = constrained(*root);
  const auto b = constrained(*root);
  equal(a->leftAnchor(), root->leftAnchor(), 10);
  equal(a->rightAnchor(), root->rightAnchor(), -10);
  fix(a->heightAnchor(), 20);
  equal(a->centerYAnchor(), root->centerYAnchor());
  // Known from its right edge and size, and written the other way round.
  equal(a->rightAnchor(), b->rightAnchor(), 5);
  equal(b->widthAnchor(), a->heightAnchor(), 2);
  equal(b->heightAnchor(), b->widthAnchor());
  equal(b->centerYAnchor(), a->centerYAnchor(), 1);
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(a->frame(), (NSRect{10, 15, 80, 20}));
  EXPECT_EQ(b->frame(), (NSRect{63, 15, 22, 22}));
  EXPECT_EQ(root->frame(), (NSRect{7, 9, 100, 50}));
}

TEST_F(LayoutTest, ASizeThatWasDecidedAboveHoldsBelowAndWhatNothingDecidesStays) {
  root->setFrame({0, 0, 100, 50});
  const auto middle = constrained(*root);
  middle->setFrame({4, 5, 6, 7});
  equal(middle->widthAnchor(), root->widthAnchor(), -20);
  const auto inner = constrained(*middle);
  fix(inner->widthAnchor(), 5);
  equal(inner->rightAnchor(), middle->rightAnchor());
  for (const double width : {100, 60}) {
    root->setFrame({0, 0, width, 50});
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(middle->frame(), (NSRect{4, 5, width - 20, 7}));
    EXPECT_EQ(inner->frame().x, width - 25);
  }
}

TEST_F(LayoutTest, ConstraintsCountWhileTheyAreActiveAndTheirViewIsThere) {
  const auto a = constrained(*root);
  const auto width = a->widthAnchor().constraintEqualToConstant(10);
  const auto widthIs = [&](double wanted) {
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(a->frame().width, wanted);
  };
  widthIs(0);
  width->setActive(true);
  width->setActive(true);
  widthIs(10);
  width->setConstant(12);
  widthIs(12);
  width->setActive(false);
  width->setConstant(14);
  widthIs(12);
  auto b = constrained(*root);
  fix(b->widthAnchor(), 30);
  equal(a->widthAnchor(), b->widthAnchor());
  b->removeFromSuperview();
  const auto orphan = b->widthAnchor().constraintEqualToConstant(5);
  b.reset();
  orphan->setActive(true);
  EXPECT_FALSE(orphan->isActive());
  widthIs(12);
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

TEST_F(AnimationTest, TheInnerOfTwoGroupsHoldsAndAChangeAtOnceEndsWhatRuns) {
  animate([this] {
    NSAnimationContext::runAnimationGroup([this](NSAnimationContext&) {
      view->setFrame({6, 0, 10, 10});
    });
    EXPECT_EQ(onScreen().x, 6);
    view->setFrame({26, 0, 10, 10});
  });
  EXPECT_EQ(onScreen().x, 6);
  desk.loop.advance(50ms);
  EXPECT_NEAR(onScreen().x, 6 + 20 * 0.80240, 1e-3);
  EXPECT_TRUE(view->isAnimating(desk.loop.now()));
  view->setFrame({3, 0, 10, 10});
  EXPECT_EQ(onScreen().x, 3);
  EXPECT_FALSE(view->isAnimating(desk.loop.now()));
}

TEST_F(AnimationTest, ALayersLookAnimatesAndColoursOfTheThemeBlend) {
  animate([this] {
    view->layer()->setBackgroundColor(NSSystemColor::ControlAccent);
    view->layer()->setCornerRadius(10);
  });
  EXPECT_EQ(layer().backgroundColor, (NSColor::RGBA{0, 0, 0, 0}));
  desk.loop.advance(50ms);
  EXPECT_NEAR(layer().cornerRadius, 8.0240, 1e-4);
  EXPECT_NEAR(shareOf(NSSystemColor::ControlAccent), 0.80240, 1e-5);
  animate([this] { view->layer()->setBackgroundColor(NSColor::whiteColor()); });
  EXPECT_NEAR(shareOf(NSSystemColor::ControlAccent), 0.80240, 1e-5) << "from where it was";
  desk.loop.advance(50ms);
  EXPECT_NEAR(shareOf(NSSystemColor::ControlAccent), 0.80240 * (1 - 0.80240), 1e-5);
  EXPECT_NEAR(layer().backgroundColor.fixedPart().green, 0.80240, 1e-5);
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
