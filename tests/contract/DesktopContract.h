#pragma once

#include <gtest/gtest.h>

#include "contract/ContractDesk.h"
#include "platform/Runtime.h"

namespace contract {

/// What every desktop promises, service by service. A case sees one desktop through its port and
/// judges it from outside through its desk. No case is skipped: both desktops have every service.
class DesktopContract : public ::testing::TestWithParam<DeskKind> {
 protected:
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
