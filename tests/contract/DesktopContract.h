#pragma once

#include <gtest/gtest.h>

#include "contract/ContractDesk.h"
#include "platform/Runtime.h"

namespace contract {

/// What every desktop promises, service by service. A case sees one desktop through its port and
/// judges it from outside through its desk. The end of the run counts and lists the skipped cases.
class DesktopContract : public ::testing::TestWithParam<DeskKind> {
 protected:
  /// Skips the case, aloud, when the desktop lacks `service`.
  [[nodiscard]] static bool has(const void* service) {
    if (service == nullptr) [] { GTEST_SKIP() << "the desktop lacks the service"; }();
    return service != nullptr;
  }

  [[nodiscard]] ContractDesk& desk() { return *desk_; }
  [[nodiscard]] platform::port::MainLoop& loop() { return desk_->desktop().mainLoop(); }
  [[nodiscard]] platform::port::DefaultsStore& defaults() { return desk_->desktop().defaults(); }
  /// `what`, noted when it runs.
  [[nodiscard]] std::function<void()> note(std::string what) {
    return [this, what = std::move(what)] { order.push_back(what); };
  }

  std::vector<std::string> order;

 private:
  std::unique_ptr<ContractDesk> desk_ = GetParam().make();
};

}  // namespace contract
