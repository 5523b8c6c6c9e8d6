#include <algorithm>
#include <iterator>
#include <set>

#include "contract/DesktopContract.h"

namespace contract {
namespace {

using platform::NSApplicationActivationPolicy;
using platform::port::ApplicationId;
using platform::port::ApplicationInfo;

std::set<ApplicationId> regularOnes(const platform::port::RunningApplications& applications) {
  std::set<ApplicationId> ids;
  for (const ApplicationInfo& application : applications.runningApplications()) {
    if (application.activationPolicy == NSApplicationActivationPolicy::Regular) {
      EXPECT_TRUE(ids.insert(application.id).second) << "listed twice";
    }
  }
  return ids;
}

TEST_P(DesktopContract, AnotherProgramIsListedAndCanBeHiddenAndShown) {
  ASSERT_NE(desk().desktop().runningApplications(), nullptr);
  auto& applications = *desk().desktop().runningApplications();
  const std::set<ApplicationId> before = regularOnes(applications);
  desk().openApplication("a letter");
  std::vector<ApplicationId> added;
  EXPECT_TRUE(desk().runUntil([&] {
    added.clear();
    std::ranges::set_difference(regularOnes(applications), before, std::back_inserter(added));
    return added.size() == 1;
  }));
  ASSERT_EQ(added.size(), 1U);
  EXPECT_TRUE(desk().isApplicationSeen());
  EXPECT_FALSE(applications.isHidden(added[0]));
  EXPECT_FALSE(applications.hide(UINT64_MAX)) << "no such program runs";
  EXPECT_FALSE(applications.unhide(UINT64_MAX));
  EXPECT_FALSE(applications.isHidden(UINT64_MAX));
  for (int round = 0; round < 2; ++round) {
    // Each twice: what is so already is asked for in vain, and that is no failure.
    EXPECT_TRUE(applications.hide(added[0]));
    EXPECT_TRUE(applications.isHidden(added[0]));
    EXPECT_TRUE(applications.hide(added[0]));
    EXPECT_TRUE(desk().runUntil([this] { return !desk().isApplicationSeen(); }));
    EXPECT_TRUE(regularOnes(applications).contains(added[0]));
    EXPECT_TRUE(applications.unhide(added[0]));
    EXPECT_FALSE(applications.isHidden(added[0]));
    EXPECT_TRUE(applications.unhide(added[0]));
    EXPECT_TRUE(desk().runUntil([this] { return desk().isApplicationSeen(); }));
  }
}

}  // namespace
}  // namespace contract
