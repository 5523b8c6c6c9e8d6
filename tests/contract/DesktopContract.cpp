#include "contract/DesktopContract.h"

#include <iostream>

namespace contract {
namespace {

/// Says at the end of the run what was not looked at.
class Skipped final : public ::testing::Environment {
 public:
  void add(std::string line) { lines_.push_back(std::move(line)); }

  void TearDown() override {
    const auto& all = *::testing::UnitTest::GetInstance();
    std::cout << "DesktopContract: " << all.test_to_run_count() << " cases, " << lines_.size()
              << " skipped\n";
    for (const std::string& line : lines_) std::cout << "  " << line << '\n';
  }

 private:
  std::vector<std::string> lines_;
};

// Owned by the test framework.
auto* const skipped = static_cast<Skipped*>(::testing::AddGlobalTestEnvironment(new Skipped));

}  // namespace

bool DesktopContract::has(Capability capability) {
  const std::optional<std::string> reason = desk_->lacks(capability);
  if (!reason) return true;
  const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
  skipped->add(std::string(test->name()) + ": " + *reason);
  [&] { GTEST_SKIP() << *reason; }();
  return false;
}

}  // namespace contract
