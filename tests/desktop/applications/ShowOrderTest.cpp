#include "desktop/linux/x11/ShowOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using linux_desktop::orderPutBack;
using linux_desktop::restackings;
using linux_desktop::WindowOrder;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(ShowOrderTest, PutsBackWhatWasBetweenWindowsThatStayed) {
  const WindowOrder remembered{1, 2, 3, 4, 5};
  EXPECT_THAT(orderPutBack({1, 3, 5, 4, 2}, {2, 4}, remembered), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(orderPutBack({5, 3, 1}, {1, 3, 5}, remembered), ElementsAre(1, 3, 5));
}

TEST(ShowOrderTest, WhatCameSinceStaysOnTop) {
  EXPECT_THAT(orderPutBack({1, 9, 3, 2}, {2, 3}, {1, 2, 3}), ElementsAre(1, 2, 3, 9));
}

TEST(ShowOrderTest, WindowsThatWereNotRememberedStayWhereTheyAre) {
  EXPECT_THAT(orderPutBack({1, 8, 2}, {8, 2}, {}), ElementsAre(1, 8, 2));
}

TEST(ShowOrderTest, MovesOnlyWhatIsOutOfPlace) {
  using linux_desktop::Restacking;
  EXPECT_THAT(restackings({1, 2, 3}, {1, 2, 3}, {1, 2, 3}), IsEmpty());
  EXPECT_THAT(restackings({3, 1, 2}, {1, 2, 3}, {1, 2, 3}),
              ElementsAre(Restacking{1, XCB_NONE}, Restacking{2, 1}));
  EXPECT_THAT(restackings({2, 9, 1}, {1, 2}, {1, 2, 9}), ElementsAre(Restacking{1, XCB_NONE}));
}

}  // namespace
