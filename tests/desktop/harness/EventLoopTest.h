#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <functional>

#include "desktop/harness/Process.h"

namespace harness {

/// For what is used in the test's own process, where it needs the event loop.
template <class Test = testing::Test>
class EventLoopTest : public Test {
 public:
  /// Lets events be handled until the fact holds.
  static bool soon(const std::function<bool()>& fact) {
    return until(fact, kPatience, [] { QCoreApplication::processEvents(); });
  }

 private:
  int argc_ = 0;
  QCoreApplication application_{argc_, nullptr};
};

}  // namespace harness
