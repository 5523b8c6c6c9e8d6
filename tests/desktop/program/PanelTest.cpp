#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "desktop/program/ProgramDesk.h"

using harness::AccessibilityClient;
using harness::DeskOptions;
using harness::Panel;
using harness::Rect;
using harness::SoundServerKind;
using harness::WindowManager;

namespace {

class StatusMenuTest : public testing::TestWithParam<Panel> {
 protected:
  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox,
                                  .panel = GetParam(),
                                  .sound = SoundServerKind::PulseAudio}};
};

INSTANTIATE_TEST_SUITE_P(EachPanel, StatusMenuTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::LxqtPanel),
                         testing::PrintToStringParamName());

TEST_P(StatusMenuTest, ItOpensInThePanelsPlaceAndTheNextLeftClickOpensThePanel) {
  ASSERT_TRUE(program.start());
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(program.opens());
    const std::set<xcb_window_t> others = program.desk().windows().viewable();
    ASSERT_TRUE(program.openMenu());
    ASSERT_TRUE(program.says("Right click!"));
    program.desk().input().key("Escape");
    EXPECT_TRUE(program.closes());
    ASSERT_TRUE(program.desk().until(
        [&] { return std::ranges::includes(others, program.desk().windows().viewable()); }));
    ASSERT_TRUE(program.clickIcon());
    ASSERT_TRUE(program.says("Left click!"));
  }
  EXPECT_TRUE(program.opens());
}

TEST_P(StatusMenuTest, AProgramThatIsBusyOffersItLate) {
  const std::string picture = program.desk().picture("picture.png", 0x204060);
  // With these two the mode takes a second to start.
  program.desk().writeSettings({"DesktopIcons", "Wallpaper"},
                               harness::kControlAltP + (", " + harness::chosenPicture(picture)));
  ASSERT_TRUE(program.start());
  const auto icon = program.desk().trayIcon();
  ASSERT_TRUE(icon);
  program.desk().input().key("ctrl+alt+p");
  program.desk().input().click(icon->centreX(), icon->centreY(), harness::Button::Right);
  ASSERT_TRUE(program.says("Right click!"));
  (void)program.desk().settled();
  EXPECT_TRUE(program.quits());
  EXPECT_THAT(program.complaints(""), testing::IsEmpty());
}

class PanelUseTest : public testing::Test {
 protected:
  ProgramDesk program{DeskOptions{.windowManager = WindowManager::Openbox,
                                  .panel = Panel::XfcePanel,
                                  .sound = SoundServerKind::PulseAudio}};
  const harness::XInput& input = program.desk().input();
};

TEST_F(PanelUseTest, AClickAnywhereElseClosesIt) {
  const auto window = program.desk().openWindow("Slides", {60, 60, 400, 300});
  const Rect bar = program.desk().panelAreas().at(0);
  const struct {
    const char* where;
    int x, y;
  } places[] = {{"another window", window.area.centreX(), window.area.centreY()},
                {"the bare desktop", 700, 60},
                {"the other monitor", 1700, 300},
                {"the panel beside the icon", bar.centreX(), bar.centreY()}};
  ASSERT_TRUE(program.start());
  for (const auto& place : places) {
    ASSERT_FALSE(program.popoverArea().contains(place.x, place.y));
    input.click(place.x, place.y);
    EXPECT_TRUE(program.closes()) << place.where;
    ASSERT_TRUE(program.clickIcon());
    ASSERT_TRUE(program.opens()) << place.where;
  }
}

TEST_F(PanelUseTest, ARowFollowsTheProgramThatItDependsOn) {
  ASSERT_TRUE(program.start());
  const AccessibilityClient reader(program.desk());
  const auto reads = [&](const std::string& text) {
    return program.desk().until([&] { return reader.shows(text); });
  };
  EXPECT_TRUE(reads("Not on this desktop: nothing shows notifications"));
  program.desk().startNotifications(harness::NotificationDaemon::Plain);
  EXPECT_TRUE(reads("Not on this desktop: “Notification Daemon” has no Do Not Disturb"));
  program.desk().startNotifications(harness::NotificationDaemon::Dunst);
  EXPECT_TRUE(reads("Keeps notifications off the screen"));
  program.desk().sound().kill();
  EXPECT_TRUE(reads("Not on this desktop: nothing plays sound"));
  program.desk().sound().restart();
  EXPECT_TRUE(reads("Silences the sound of this computer"));
  EXPECT_FALSE(reader.shows("More is coming soon"));
  EXPECT_TRUE(reader.shows("Takes their windows off the screen"));
  ASSERT_TRUE(program.clickIcon());
  ASSERT_TRUE(program.closes());
  const harness::XConnection& x = program.desk().x();
  const xcb_window_t manager = x.number(x.root(), "_NET_SUPPORTING_WM_CHECK").value_or(XCB_NONE);
  program.desk().windowManager().kill();
  ASSERT_TRUE(program.desk().until([&] { return !x.number(manager, "_NET_SUPPORTING_WM_CHECK"); }));
  ASSERT_TRUE(program.desk().run({CALMDECK_PROGRAM}).succeeded());
  EXPECT_TRUE(reads("Not on this desktop: no program can hide the windows of others"));
  EXPECT_THAT(program.complaints("notifications"), testing::IsEmpty()) << "nobody asked for it";
}

class WithoutTrayTest : public testing::Test {
 protected:
  explicit WithoutTrayTest(const harness::Environment& environment = {})
      : program(DeskOptions{.windowManager = WindowManager::Openbox,
                            .sound = SoundServerKind::PulseAudio,
                            .environment = environment}) {}

  /// As a screen reader finds them below the button.
  [[nodiscard]] std::vector<std::string> itemsOfTheMenu() {
    std::vector<std::string> names;
    for (const auto& element : AccessibilityClient(program.desk()).elements())
      if (element.role == "menu item" && element.is("showing")) names.push_back(element.name);
    return names;
  }

  ProgramDesk program;
};

TEST_F(WithoutTrayTest, ThePanelIsAnOrdinaryWindowWithTheMenuInIt) {
  ASSERT_TRUE(program.start());
  EXPECT_THAT(program.complaints("tray"), testing::SizeIs(1));
  const auto window = program.desk().openPopover();
  ASSERT_TRUE(window);
  EXPECT_TRUE(window->managed);
  EXPECT_EQ(window->type, "NORMAL");
  EXPECT_EQ(window->name, "Calmdeck");
  EXPECT_FALSE(window->has("SKIP_TASKBAR"));

  const auto other = program.desk().openWindow("Slides", {60, 60, 200, 100});
  program.desk().input().click(other.area.centreX(), other.area.centreY());
  ASSERT_TRUE(program.desk().until([&] { return program.desk().windows().active() == other.id; }));
  ASSERT_TRUE(program.muteByTheMode()) << "it stays open";

  const AccessibilityClient reader(program.desk());
  const auto menu = reader.await("Menu");
  ASSERT_TRUE(menu);
  program.desk().input().click(menu->area.centreX(), menu->area.centreY());
  ASSERT_TRUE(program.says("Right click!"));
  const auto shown = program.desk().awaitWindow([&](const harness::WindowInfo& popup) {
    return harness::ofClass("calmdeck")(popup) && popup.id != window->id;
  });
  ASSERT_TRUE(shown);
  EXPECT_GE(shown->area.y, menu->area.bottom()) << "it drops down from its button";
  const auto master = reader.await(ProgramDesk::kMaster);
  ASSERT_TRUE(master);
  EXPECT_FALSE(shown->area.intersects(master->area));
  program.desk().input().key("Escape");
  ASSERT_TRUE(program.desk().until([&] { return itemsOfTheMenu().empty(); }));

  // And all of it from the keyboard.
  program.desk().input().key("F10");
  ASSERT_TRUE(program.says("Right click!"));
  ASSERT_TRUE(program.desk().until([&] { return !itemsOfTheMenu().empty(); }));
  EXPECT_THAT(itemsOfTheMenu(), testing::Contains("Quit"));
  EXPECT_TRUE(program.quits());
  EXPECT_TRUE(program.sinkMuted(true));
}

TEST_F(WithoutTrayTest, ASecondStartShowsThePanelOfTheFirst) {
  ASSERT_TRUE(program.start());
  program.desk().input().key("Escape");
  ASSERT_TRUE(program.closes());
  const auto second = program.desk().run({CALMDECK_PROGRAM});
  EXPECT_TRUE(program.opens());
  EXPECT_TRUE(program.muteByTheMode());
}

/// A session in German, for which the test makes the locale in its own home.
class InGermanTest : public WithoutTrayTest {
 protected:
  InGermanTest() : WithoutTrayTest({{"LC_ALL", "de_DE.UTF-8"}, {"LOCPATH", "locales"}}) {}
  [[nodiscard]] bool makeLocale() {
    const auto folder = program.desk().home().home() / "locales";
    std::filesystem::create_directory(folder);
    const auto made = folder / "de_DE.UTF-8";
    (void)program.desk().run({"localedef", "-i", "de_DE", "-f", "UTF-8", made});
    return std::filesystem::exists(made / "LC_MESSAGES");
  }
};

TEST_F(InGermanTest, WhatUsersReadIsGermanAndWhatIsPrintedIsNot) {
  if (!makeLocale()) GTEST_SKIP() << "localedef has no sources for de_DE (package locales)";
  ASSERT_TRUE(program.start());
  const AccessibilityClient reader(program.desk());
  EXPECT_TRUE(reader.await("Präsentationsmodus"));
  EXPECT_TRUE(reader.await("Lautsprecher stummschalten"));
  const auto menu = reader.await("Menü");
  ASSERT_TRUE(menu);
  program.desk().input().click(menu->area.centreX(), menu->area.centreY());
  ASSERT_TRUE(program.says("Right click!"));
  EXPECT_TRUE(program.desk().until([this] { return itemsOfTheMenu().size() == 3; }));
  EXPECT_THAT(itemsOfTheMenu(),
              testing::ElementsAre("Einstellungen", "Nach Aktualisierungen suchen", "Beenden"));
  EXPECT_THAT(program.complaints("tray"),
              testing::ElementsAre(testing::HasSubstr("no tray is running")));
}

}  // namespace
