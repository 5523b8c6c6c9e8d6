#pragma once

#include <gtest/gtest.h>

#include "desktop/simulated/SimulatedDesktop.h"
#include "platform/Runtime.h"

namespace tests {

/// The layer on a simulated desktop.
class DeskTest : public ::testing::Test {
 protected:
  simulated::SimulatedDesktop desk;
  platform::Runtime runtime{desk};
};

}  // namespace tests
