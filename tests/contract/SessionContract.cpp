#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "contract/ContractDesk.h"

namespace contract {
namespace {

using Paths = std::vector<std::string>;
using platform::Array;
using platform::NSApplicationActivationPolicy;
using platform::Value;
using platform::port::ApplicationId;
using platform::port::ApplicationInfo;
using platform::port::LoginItem;

std::set<ApplicationId> regularOnes(platform::port::RunningApplications& applications) {
  std::set<ApplicationId> ids;
  for (const ApplicationInfo& application : applications.runningApplications()) {
    if (application.activationPolicy == NSApplicationActivationPolicy::Regular) {
      EXPECT_TRUE(ids.insert(application.id).second) << "listed twice";
    }
  }
  return ids;
}

TEST_P(DesktopContract, AnotherProgramIsListedAndCanBeHiddenAndShown) {
  ASSERT_NE(desk().desktop().runningApplications, nullptr);
  auto& applications = *desk().desktop().runningApplications;
  const std::set<ApplicationId> before =
      desk().tellsApplicationsApart() ? regularOnes(applications) : std::set<ApplicationId>{};
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

constexpr const char* kProgram = "/programs/one";

class LoginList {
 public:
  explicit LoginList(ContractDesk& desk) : items_(*desk.desktop().loginItems) {}

  [[nodiscard]] std::vector<LoginItem> items() {
    const auto items = items_.items();
    EXPECT_TRUE(items);
    return items.value_or(std::vector<LoginItem>{});
  }
  /// What the items start, in their order; "" where that cannot be told.
  [[nodiscard]] Paths paths() {
    Paths paths;
    for (const LoginItem& item : items()) paths.push_back(items_.resolve(item).value_or(""));
    return paths;
  }
  [[nodiscard]] std::optional<LoginItem> append(std::string_view path) {
    const auto before = items();
    return items_.insert(path, before.empty() ? std::nullopt : std::optional(before.back()));
  }

 private:
  platform::port::LoginItems& items_;
};

TEST_P(DesktopContract, AProgramIsAddedAsTheLastLoginItemAndRemoved) {
  ASSERT_NE(desk().desktop().loginItems, nullptr);
  auto& port = *desk().desktop().loginItems;
  LoginList list(desk());
  EXPECT_EQ(list.paths(), Paths{});
  desk().addLoginItem("/programs/first");
  desk().addLoginItem(std::nullopt);
  const auto ours = list.append(kProgram);
  ASSERT_TRUE(ours);
  EXPECT_EQ(list.paths(), (Paths{"/programs/first", "", kProgram}));
  EXPECT_EQ(list.items().back(), *ours);
  EXPECT_TRUE(desk().startsAtLogin(kProgram));

  EXPECT_TRUE(port.remove(*ours));
  EXPECT_FALSE(desk().startsAtLogin(kProgram));
  EXPECT_FALSE(port.remove(*ours));
  EXPECT_FALSE(port.resolve(*ours));
  EXPECT_EQ(list.paths(), (Paths{"/programs/first", ""}));
}

const std::map<std::string, Value> kValues{
    {"no", false},
    {"yes", true},
    {"one", 1},
    {"beyond a double", std::int64_t{9007199254740993}},
    {"largest", std::int64_t{INT64_MAX}},
    {"smallest", std::int64_t{INT64_MIN}},
    {"empty", ""},
    {"text", "caf\xc3\xa9 \"quoted\" \\ \n\t /\x01"},
    {"no elements", Array{}},
    {"elements", Array{14, 11, true, "x", Array{1}}},
};

TEST_P(DesktopContract, StoredValuesKeepTheirTypeInThisRunAndTheNext) {
  for (const auto& [key, value] : kValues) {
    EXPECT_FALSE(defaults().object(key)) << key;
    defaults().set(key, value);
    EXPECT_EQ(defaults().object(key), value) << key;
  }
  defaults().remove("gone");
  defaults().set("gone", 1);
  defaults().set("gone", true);
  EXPECT_EQ(defaults().object("gone"), Value(true));
  defaults().remove("gone");
  EXPECT_FALSE(defaults().object(""));
  desk().nextRunOfTheProgram();
  for (const auto& [key, value] : kValues) EXPECT_EQ(defaults().object(key), value) << key;
  EXPECT_FALSE(defaults().object("gone"));
}

}  // namespace
}  // namespace contract
