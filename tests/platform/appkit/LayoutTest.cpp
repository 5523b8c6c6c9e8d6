#include <gtest/gtest.h>

#include "platform/appkit/NSView.h"
#include "support/DeskTest.h"

namespace platform {
namespace {

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

TEST_F(LayoutTest, ASizeThatWasDecidedAboveHoldsBelow) {
  root->setFrame({0, 0, 100, 50});
  const auto middle = constrained(*root);
  equal(middle->leftAnchor(), root->leftAnchor());
  equal(middle->widthAnchor(), root->widthAnchor(), -20);
  fix(middle->heightAnchor(), 10);
  const auto inner = constrained(*middle);
  fix(inner->widthAnchor(), 5);
  equal(inner->rightAnchor(), middle->rightAnchor());
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(inner->frame().x, 75);
  root->setFrame({0, 0, 60, 50});
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(middle->frame().width, 40);
  EXPECT_EQ(inner->frame().x, 35);
}

TEST_F(LayoutTest, WhatNoConstraintDecidesKeepsItsValue) {
  const auto a = constrained(*root);
  a->setFrame({4, 5, 6, 7});
  fix(a->widthAnchor(), 60);
  const auto plain = std::make_shared<NSView>();
  plain->setFrame({1, 2, 3, 4});
  root->addSubview(plain);
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(a->frame(), (NSRect{4, 5, 60, 7}));
  EXPECT_EQ(plain->frame(), (NSRect{1, 2, 3, 4}));
}

TEST_F(LayoutTest, ConstraintsCountWhileTheyAreActive) {
  const auto a = constrained(*root);
  const auto width = a->widthAnchor().constraintEqualToConstant(10);
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(a->frame().width, 0);
  width->setActive(true);
  width->setActive(true);
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(a->frame().width, 10);
  width->setConstant(12);
  EXPECT_EQ(a->frame().width, 10);
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(a->frame().width, 12);
  width->setActive(false);
  width->setConstant(14);
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(a->frame().width, 12);
}

TEST_F(LayoutTest, AConstraintWhoseViewIsGoneSaysNothing) {
  const auto a = constrained(*root);
  auto b = constrained(*root);
  fix(b->widthAnchor(), 30);
  equal(a->widthAnchor(), b->widthAnchor());
  b->removeFromSuperview();
  const auto orphan = b->widthAnchor().constraintEqualToConstant(5);
  b.reset();
  orphan->setActive(true);
  EXPECT_FALSE(orphan->isActive());
  root->layoutSubtreeIfNeeded();
  EXPECT_EQ(a->frame().width, 0);
}

}  // namespace
}  // namespace platform
