#include <gmock/gmock.h>

#include "presentation/FeatureTest.h"

namespace presentation {
namespace {

using Policy = platform::NSApplicationActivationPolicy;
using Id = platform::port::ApplicationId;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class HidingApplicationsTest : public FeatureTest {
 protected:
  void add(Id id, std::optional<std::string> name, Policy policy = Policy::Regular) {
    desk.applications.list.push_back({id, std::move(name), policy});
  }
  void launchHiding() { launchWith({shared::kUserdefaultsToggleHideActiveApps}); }
  [[nodiscard]] static Calls hides(const std::vector<Id>& ids) {
    Calls calls;
    for (const Id id : ids) calls.push_back("applications.hide " + std::to_string(id));
    return calls;
  }
};

TEST_F(HidingApplicationsTest, OrdinaryApplicationsAreHiddenInTheirOrderAndOnceMore) {
  add(5, "Mail");
  add(2, "Dock", Policy::Accessory);
  add(9, "Terminal");
  add(3, "Agent", Policy::Prohibited);
  add(4, "Agent");
  launchHiding();
  EXPECT_EQ(callsOf([this] { pressMaster(); }, "applications"), hides({5, 9, 4}));
  EXPECT_EQ(callsOf([this] { desk.loop.settle(); }), hides({5, 9, 4}));
  EXPECT_THAT(desk.applications.hidden, UnorderedElementsAre(5, 9, 4));
}

TEST_F(HidingApplicationsTest, FinderIsSparedByItsNameAlone) {
  const std::optional<std::string> spared[] = {"Finder", "finder", "FINDER", "fInDeR"};
  const std::optional<std::string> hidden[] = {
      std::nullopt, "",          "Finder ",       " Finder",      "Finders",
      "Finde",      "My Finder", "F\xc4\xb1nder", "F\xc4\xb0NDER"};
  Id id = 0;
  for (const auto& name : spared) add(++id, name);
  const Id lastSpared = id;
  for (const auto& name : hidden) add(++id, name);
  launchHiding();
  clickMaster();
  for (const auto& application : desk.applications.list) {
    EXPECT_EQ(desk.applications.isHidden(application.id), application.id > lastSpared)
        << application.localizedName.value_or("no name");
  }
}

TEST_F(HidingApplicationsTest, TheSecondPassTakesTheListOfTheFirst) {
  add(1, "Mail");
  add(2, "Terminal");
  launchHiding();
  pressMaster();
  add(3, "Late");
  desk.applications.list.erase(desk.applications.list.begin());
  desk.applications.hidden.clear();  // the user brings them forward
  EXPECT_EQ(callsOf([this] { desk.loop.settle(); }), hides({1, 2}));
  EXPECT_FALSE(desk.applications.isHidden(3));
}

TEST_F(HidingApplicationsTest, EveryHiddenOrdinaryApplicationIsShownWhoeverHidIt) {
  add(1, "Mail");
  add(2, "Finder");
  add(3, "Agent", Policy::Accessory);
  add(4, "Terminal");
  desk.applications.hidden = {2, 3, 4};
  launchHiding();
  clickMaster();
  add(5, "Late");
  add(6, "Later");
  desk.applications.hidden.insert(6);
  desk.applications.hidden.erase(1);  // brought forward by the user
  EXPECT_EQ(callsOf([this] { clickMaster(); }, "applications"),
            (Calls{"applications.unhide 2", "applications.unhide 4", "applications.unhide 6"}));
  EXPECT_THAT(desk.applications.hidden, UnorderedElementsAre(3));
}

TEST_F(HidingApplicationsTest, WhoDoesNotHideIsAskedTwiceAndForgotten) {
  add(1, "Mail");
  desk.applications.obstinate = {1};
  launchHiding();
  EXPECT_EQ(callsOf([this] { clickMaster(); }, "applications"), hides({1, 1}));
  EXPECT_THAT(callsOf([this] { clickMaster(); }, "applications"), IsEmpty());
  EXPECT_THAT(desk.output.lines, IsEmpty());
}

}  // namespace
}  // namespace presentation
