#include <gmock/gmock.h>

#include "desktop/x11/HidingDesk.h"

using harness::WindowManager;
using platform::NSApplicationActivationPolicy;
using platform::port::ApplicationId;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

class ApplicationListTest : public testing::Test {
 protected:
  std::map<std::string, NSApplicationActivationPolicy> policies() {
    std::map<std::string, NSApplicationActivationPolicy> found;
    for (const auto& info : desk.list())
      found.emplace(info.localizedName.value_or("-"), info.activationPolicy);
    return found;
  }
  std::optional<ApplicationId> idOf(const std::string& name) {
    for (const auto& info : desk.list())
      if (info.localizedName == name) return info.id;
    return std::nullopt;
  }

  HidingDesk desk{WindowManager::Openbox};
};

TEST_F(ApplicationListTest, WindowsAreGroupedByApplicationAndKeepTheirNumber) {
  constexpr auto kRegular = NSApplicationActivationPolicy::Regular;
  constexpr auto kAccessory = NSApplicationActivationPolicy::Accessory;
  desk.open({.name = "one", .className = "Editor"});
  desk.open({.name = "two", .className = "editor"});
  desk.open({.name = "three", .className = "Viewer", .gtkApplicationId = "org.example.Other"});
  desk.open({.name = "widget", .className = "Widget", .state = "SKIP_TASKBAR"});
  desk.open({.name = "panel", .className = "Bar", .type = "DOCK"});
  desk.open({.name = "second", .className = "Calmdeck"});
  desk.startProgram();
  EXPECT_THAT(policies(), UnorderedElementsAre(Pair("Probe", kAccessory), Pair("Editor", kRegular),
                                               Pair("Viewer", kRegular), Pair("Widget", kAccessory),
                                               Pair("Bar", kAccessory)));
  EXPECT_EQ(desk.list().size(), 5U);

  const auto editor = idOf("Editor");
  const auto palette = desk.open({.name = "palette", .className = "Palette"});
  const auto id = idOf("Palette");
  EXPECT_TRUE(id);
  EXPECT_EQ(idOf("Palette"), id);
  desk.close(palette);
  EXPECT_EQ(idOf("Palette"), std::nullopt);
  desk.open({.name = "palette", .className = "Palette"});
  EXPECT_NE(idOf("Palette"), id);
  EXPECT_EQ(idOf("Editor"), editor);
}

TEST_F(ApplicationListTest, WindowsThatVanishMeanwhileAreNoHarm) {
  const auto gone = desk.open({.name = "gone", .className = "Gone"});
  const auto stays = desk.open({.name = "stays", .className = "Stays"});
  desk.startProgram();
  desk.hideAsTheMode();
  ASSERT_TRUE(desk.allMinimised({gone, stays}));
  desk.close(gone);
  desk.show();
  EXPECT_TRUE(desk.allShown({stays}));
  EXPECT_EQ(desk.program().log(), "");
}

TEST(WithoutWindowManagerTest, OneLineSaysThatNothingCanBeHidden) {
  HidingDesk desk(WindowManager::None);
  desk.openProgram("letter", {100, 100, 300, 200});
  desk.startProgram();
  desk.hideAsTheMode();
  desk.show();
  EXPECT_EQ(desk.list().size(), 1U);
  EXPECT_THAT(desk.program().log(), testing::HasSubstr("no window manager"));
  EXPECT_EQ(std::ranges::count(desk.program().log(), '\n'), 1);
}

}  // namespace
