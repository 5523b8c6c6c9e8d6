#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "desktop/program/ProgramDesk.h"

using harness::Panel;
using harness::Rect;

namespace {

class PanelDesk : public ProgramDesk {
 protected:
  explicit PanelDesk(Panel panel, const harness::Environment& environment = {})
      : ProgramDesk({.windowManager = harness::WindowManager::Openbox,
                     .panel = panel,
                     .sound = harness::SoundServerKind::PulseAudio,
                     .environment = environment}) {}
};

class StatusMenuTest : public testing::TestWithParam<Panel>, public PanelDesk {
 protected:
  StatusMenuTest() : PanelDesk(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(EachPanel, StatusMenuTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::LxqtPanel),
                         testing::PrintToStringParamName());

TEST_P(StatusMenuTest, ItOpensInThePanelsPlaceAndTheNextLeftClickOpensThePanel) {
  ASSERT_TRUE(start());
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(opens());
    const std::set<xcb_window_t> others = desk.windows().viewable();
    ASSERT_TRUE(openMenu());
    ASSERT_TRUE(says("Right click!"));
    desk.input().key("Escape");
    EXPECT_TRUE(closes());
    ASSERT_TRUE(
        desk.until([&] { return std::ranges::includes(others, desk.windows().viewable()); }));
    ASSERT_TRUE(clickIcon());
    ASSERT_TRUE(says("Left click!"));
  }
  EXPECT_TRUE(opens());
}

TEST_P(StatusMenuTest, AProgramThatIsBusyOffersItLate) {
  const std::string picture = desk.picture("picture.png", 0x204060);
  // With these two the mode takes a second to start.
  desk.writeSettings({"DesktopIcons", "Wallpaper"},
                     harness::kControlAltP + (", " + harness::chosenPicture(picture)));
  ASSERT_TRUE(start());
  const auto icon = desk.trayIcon();
  ASSERT_TRUE(icon);
  desk.input().key("ctrl+alt+p");
  desk.input().click(icon->centreX(), icon->centreY(), harness::Button::Right);
  ASSERT_TRUE(says("Right click!"));
  (void)desk.settled();
  EXPECT_TRUE(quits());
  EXPECT_THAT(complaints(""), testing::IsEmpty());
}

class PanelUseTest : public testing::Test, public PanelDesk {
 protected:
  PanelUseTest() : PanelDesk(Panel::XfcePanel) {}
};

TEST_F(PanelUseTest, AClickAnywhereElseClosesIt) {
  const auto window = desk.openWindow("Slides", {60, 60, 400, 300});
  const Rect bar = desk.panelAreas().at(0);
  const struct {
    const char* where;
    int x, y;
  } places[] = {{"another window", window.area.centreX(), window.area.centreY()},
                {"the bare desktop", 700, 60},
                {"the other monitor", 1700, 300},
                {"the panel beside the icon", bar.centreX(), bar.centreY()}};
  ASSERT_TRUE(start());
  for (const auto& place : places) {
    ASSERT_FALSE(popoverArea().contains(place.x, place.y));
    desk.input().click(place.x, place.y);
    EXPECT_TRUE(closes()) << place.where;
    ASSERT_TRUE(clickIcon());
    ASSERT_TRUE(opens()) << place.where;
  }
}

TEST_F(PanelUseTest, ARowFollowsTheProgramThatItDependsOn) {
  ASSERT_TRUE(start());
  const auto reads = [&](const std::string& text) {
    return desk.until([&] { return reader.shows(text); });
  };
  EXPECT_TRUE(reads("Not on this desktop: nothing shows notifications"));
  desk.startNotifications(harness::NotificationDaemon::Plain);
  EXPECT_TRUE(reads("Not on this desktop: “Notification Daemon” has no Do Not Disturb"));
  desk.startNotifications(harness::NotificationDaemon::Dunst);
  EXPECT_TRUE(reads("Keeps notifications off the screen"));
  desk.sound().kill();
  EXPECT_TRUE(reads("Not on this desktop: nothing plays sound"));
  desk.sound().restart();
  EXPECT_TRUE(reads("Silences the sound of this computer"));
  EXPECT_FALSE(reader.shows("More is coming soon"));
  EXPECT_TRUE(reader.shows("Takes their windows off the screen"));
  ASSERT_TRUE(close());
  const harness::XConnection& x = desk.x();
  const xcb_window_t manager = x.number(x.root(), "_NET_SUPPORTING_WM_CHECK").value_or(XCB_NONE);
  desk.windowManager().kill();
  ASSERT_TRUE(desk.until([&] { return !x.number(manager, "_NET_SUPPORTING_WM_CHECK"); }));
  desk.mustRun({CALMDECK_PROGRAM});
  EXPECT_TRUE(reads("Not on this desktop: no program can hide the windows of others"));
  EXPECT_THAT(complaints("notifications"), testing::IsEmpty()) << "nobody asked for it";
}

// As Enlightenment, which reads the menu once and tells of nothing but the choice.
TEST_F(PanelUseTest, ItsMenuIsWholeAndServesBeforeAnybodyHasOpenedIt) {
  ASSERT_TRUE(start());
  const auto item = desk.bus().trayItem();
  ASSERT_TRUE(item);
  const auto tellMenu = [&](const std::string& method, const std::vector<std::string>& arguments) {
    return desk.bus()
        .call(item->first, item->second + "/Menu", "com.canonical.dbusmenu." + method, arguments)
        .value_or("");
  };
  EXPECT_THAT(tellMenu("GetLayout", {"int32:0", "int32:-1", "array:string:"}),
              testing::AllOf(testing::HasSubstr("Check for Updates"), testing::HasSubstr("Quit")));
  (void)tellMenu("Event", {"int32:3", "string:clicked", "variant:int32:0", "uint32:0"});
  EXPECT_EQ(program->waitForExit(), (harness::ProcessEnd{0, 0}));
}

class WithoutTrayTest : public testing::Test, public PanelDesk {
 protected:
  explicit WithoutTrayTest(const harness::Environment& environment = {})
      : PanelDesk(Panel::None, environment) {}

  /// As a screen reader finds them below the button.
  [[nodiscard]] std::vector<std::string> itemsOfTheMenu() {
    std::vector<std::string> names;
    for (const auto& element : reader.elements())
      if (element.role == "menu item" && element.is("showing")) names.push_back(element.name);
    return names;
  }
};

TEST_F(WithoutTrayTest, ThePanelIsAnOrdinaryWindowWithTheMenuInIt) {
  ASSERT_TRUE(start());
  EXPECT_THAT(complaints("tray"), testing::SizeIs(1));
  const auto window = desk.openPopover();
  ASSERT_TRUE(window);
  EXPECT_TRUE(window->managed);
  EXPECT_EQ(window->type, "NORMAL");
  EXPECT_EQ(window->name, "Calmdeck");
  EXPECT_FALSE(window->has("SKIP_TASKBAR"));

  const auto other = desk.openWindow("Slides", {60, 60, 200, 100});
  desk.input().click(other.area.centreX(), other.area.centreY());
  ASSERT_TRUE(desk.until([&] { return desk.windows().active() == other.id; }));
  ASSERT_TRUE(muteByTheMode()) << "it stays open";

  const auto menu = reader.await("Menu");
  ASSERT_TRUE(menu);
  desk.input().click(menu->area.centreX(), menu->area.centreY());
  ASSERT_TRUE(says("Right click!"));
  const auto shown = desk.awaitWindow([&](const harness::WindowInfo& popup) {
    return harness::ofClass("calmdeck")(popup) && popup.id != window->id;
  });
  ASSERT_TRUE(shown);
  EXPECT_GE(shown->area.y, menu->area.bottom()) << "it drops down from its button";
  const auto master = reader.await(kMaster);
  ASSERT_TRUE(master);
  EXPECT_FALSE(shown->area.intersects(master->area));
  desk.input().key("Escape");
  ASSERT_TRUE(desk.until([&] { return itemsOfTheMenu().empty(); }));

  // And all of it from the keyboard.
  desk.input().key("F10");
  ASSERT_TRUE(says("Right click!"));
  ASSERT_TRUE(desk.until([&] { return !itemsOfTheMenu().empty(); }));
  EXPECT_THAT(itemsOfTheMenu(), testing::Contains("Quit"));
  EXPECT_TRUE(quits());
  EXPECT_TRUE(sinkMuted(true));
}

/// A session in German, for which the test makes the locale in its own home.
class InGermanTest : public WithoutTrayTest {
 protected:
  InGermanTest() : WithoutTrayTest({{"LC_ALL", "de_DE.UTF-8"}, {"LOCPATH", "locales"}}) {}
  [[nodiscard]] bool makeLocale() {
    const auto folder = desk.home().home() / "locales";
    std::filesystem::create_directory(folder);
    const auto made = folder / "de_DE.UTF-8";
    (void)desk.run({"localedef", "-i", "de_DE", "-f", "UTF-8", made});
    return std::filesystem::exists(made / "LC_MESSAGES");
  }
};

TEST_F(InGermanTest, WhatUsersReadIsGermanAndWhatIsPrintedIsNot) {
  if (!makeLocale()) GTEST_SKIP() << "localedef has no sources for de_DE (package locales)";
  ASSERT_TRUE(start());
  EXPECT_TRUE(reader.await("Präsentationsmodus"));
  EXPECT_TRUE(reader.await("Lautsprecher stummschalten"));
  ASSERT_TRUE(click("Menü"));
  ASSERT_TRUE(says("Right click!"));
  EXPECT_TRUE(desk.until([this] { return itemsOfTheMenu().size() == 3; }));
  EXPECT_THAT(itemsOfTheMenu(),
              testing::ElementsAre("Einstellungen", "Nach Aktualisierungen suchen", "Beenden"));
  EXPECT_THAT(complaints("tray"), testing::ElementsAre(testing::HasSubstr("no tray is running")));
}

}  // namespace
