#include "desktop/linux/x11/HideAndShow.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using linux_desktop::orderPutBack;
using linux_desktop::WindowOrder;
using testing::ElementsAre;

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

}  // namespace
