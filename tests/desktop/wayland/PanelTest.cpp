// The panel and the preferences as a compositor has them, seen and driven from outside.

#include <gmock/gmock.h>

#include <cstdlib>

#include "desktop/wayland/ModeDesk.h"

using harness::Compositor;
using harness::Edge;
using harness::Image;
using harness::Rect;
using harness::WaylandDesk;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr Rect kFirstOutput{0, 0, WaylandDesk::kOutputWidth, WaylandDesk::kOutputHeight};
constexpr Rect kDesktop{0, 0, 2 * WaylandDesk::kOutputWidth, WaylandDesk::kOutputHeight};

class WaylandPanelTest : public testing::TestWithParam<Compositor> {
 protected:
  void SetUp() override {
    desk.clickOn(slides);
    ASSERT_TRUE(slides.process->waitForLine("^active$"));
    bare = desk.screen().whole();
    program = desk.startCalmdeck();
    ASSERT_TRUE(hasKeyboard()) << "it opens by itself";
  }

  /// Each looks at what comes after what the one before saw.
  [[nodiscard]] bool hasKeyboard() { return slides.process->waitForLine("^inactive$").has_value(); }
  [[nodiscard]] bool gaveKeyboardBack() {
    return slides.process->waitForLine("^active$").has_value();
  }
  [[nodiscard]] bool closesByEscape() {
    desk.input().key("Escape");
    return gaveKeyboardBack();
  }
  /// Never twice at one place: a double click is told of as three clicks.
  void clickIcon() {
    icon = desk.trayIcon().value();
    aside = -aside;
    desk.input().click(icon.centreX() + aside, icon.centreY());
  }
  [[nodiscard]] bool opensByIcon() {
    clickIcon();
    return hasKeyboard();
  }
  /// What has changed below the bar since the program came; empty: nothing.
  [[nodiscard]] Rect panel() const { return changed(bare, kFirstOutput); }
  [[nodiscard]] Rect changed(const Image& since, const Rect& output) const {
    constexpr int kBar = 32;
    const Rect below{output.x, kBar, output.width, output.height - kBar};
    const auto area = harness::changedArea(since.part(below), desk.screen().area(below));
    if (!area) return {};
    return {area->x + below.x, area->y + below.y, area->width, area->height};
  }

  /// Clicks the first of the small switches, of a panel in the upper right corner below the bar,
  /// and sees it stored.
  [[nodiscard]] bool turnsASwitch() const {
    const std::string before = desk.settings();
    desk.input().click(kFirstOutput.right() - 40, icon.bottom() + 98);
    return desk.until([&] { return desk.settings() != before; });
  }

  /// Without borders, which would show who has the keyboard.
  WaylandDesk desk{
      {.compositor = GetParam(),
       .bar = true,
       .configuration = GetParam() == Compositor::Sway ? "default_border none\n" : ""}};
  harness::ForeignWindow& slides = desk.openWindow("slides", 0xc02030);
  Image bare;
  Rect icon;
  int aside = 4;
  std::unique_ptr<harness::Process> program;
};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandPanelTest,
                         testing::ValuesIn(harness::installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(WaylandPanelTest, OpensAtTheIconAgainAndAgainWithTheKeyboard) {
  ASSERT_TRUE(closesByEscape()) << "it reached it at once";
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(opensByIcon());
    EXPECT_TRUE(desk.until([&] {
      const Rect now = panel();
      return !now.empty() && kFirstOutput.contains(now) && now.y < icon.bottom() + 20 &&
             now.height > 100 && now.x <= icon.centreX() && icon.centreX() <= now.right();
    })) << "it is below the icon, at "
        << panel().x << "," << panel().y;
    EXPECT_TRUE(turnsASwitch()) << "a press on it is its own";
    clickIcon();
    ASSERT_TRUE(gaveKeyboardBack()) << "the icon closes it, too";
  }
}

TEST_P(WaylandPanelTest, APressAnywhereElseClosesItAndItIsListedNowhere) {
  if (GetParam() == Compositor::Sway) {
    EXPECT_THAT(desk.run({"swaymsg", "-t", "get_tree"}).output, Not(HasSubstr("almdeck")));
  }
  const auto other = desk.areaOf(slides.colour).value();
  desk.input().click(other.centreX(), other.centreY());
  ASSERT_TRUE(gaveKeyboardBack());
  ASSERT_TRUE(opensByIcon());
  ASSERT_TRUE(desk.until([&] { return panel().height > 100; }));
  const Rect second = desk.outputs().back().area;
  desk.input().click(second.centreX(), second.bottom() - 20);
  EXPECT_TRUE(desk.until([&] { return panel().height < 50; })) << "on another monitor";
}

TEST_P(WaylandPanelTest, APressOnAWindowThatFillsTheScreenClosesIt) {
  ASSERT_TRUE(closesByEscape());
  desk.input().key("F11");
  Rect filled;
  ASSERT_TRUE(desk.until([&] {
    filled = desk.areaOf(slides.colour).value_or(Rect());
    return filled.width == kFirstOutput.width && filled.height == kFirstOutput.height;
  }));
  desk.mustRun({"gapplication", "launch", harness::kCalmdeckName});
  ASSERT_TRUE(hasKeyboard());
  desk.input().click(filled.centreX(), filled.bottom() - 40);
  EXPECT_TRUE(gaveKeyboardBack());
}

TEST_P(WaylandPanelTest, OpensByItselfAtTheBarWhereverThatIs) {
  const std::vector<harness::WaylandOutput> outputs = desk.outputs();
  for (std::size_t place = 0; place < outputs.size(); ++place) {
    program.reset();
    ASSERT_TRUE(gaveKeyboardBack());
    // KWin does not tell which edge it is at.
    const bool isBelow = place == 0 && GetParam() != Compositor::Kwin;
    desk.startBar(place, isBelow ? Edge::Bottom : Edge::Top);
    const Image before = desk.screen().settled(kDesktop, 200ms);
    program = desk.startCalmdeck();
    ASSERT_TRUE(hasKeyboard());
    const auto panelOn = [&](const Rect& output) {
      const Rect between{output.x, 40, output.width, output.height - 80};
      return harness::changedArea(before.part(between), desk.screen().area(between))
          .value_or(Rect());
    };
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      EXPECT_TRUE(desk.until([&] {
        const Rect panel = panelOn(outputs[i].area);
        return i == place ? panel.height > 100 && (panel.y > 200) == isBelow : panel.empty();
      })) << place
          << i;
    }
  }
}

TEST_P(WaylandPanelTest, OfSeveralBarsItOpensByItselfAtTheOneNearestToThePointer) {
  program.reset();
  ASSERT_TRUE(gaveKeyboardBack());
  const harness::WaylandOutput second = desk.outputs().back();
  desk.home().writeConfig("waybar/second", R"({"layer": "top", "height": 32, "output": ")" +
                                               second.name + R"(", "modules-right": ["tray"]})");
  const auto bar = desk.start({"waybar", "-c", desk.home().config() / "waybar/second"});
  const auto colour = [&](int x) { return desk.screen().pixel(x, 10); };
  ASSERT_TRUE(desk.until([&] { return colour(second.area.x + 100) == colour(100); }));
  desk.input().moveTo(second.area.x + 100, 200);
  const Image before = desk.screen().settled(kDesktop, 200ms);
  program = desk.startCalmdeck();
  ASSERT_TRUE(hasKeyboard());
  EXPECT_TRUE(desk.until([&] { return changed(before, second.area).height > 100; }));
  EXPECT_TRUE(changed(before, kFirstOutput).empty());
}

/// Where Plasma tells of its panels.
class PlasmaPanelTest : public WaylandPanelTest {};

INSTANTIATE_TEST_SUITE_P(On, PlasmaPanelTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Kwin})),
                         testing::PrintToStringParamName());

TEST_P(PlasmaPanelTest, OpensByItselfBesideTheBarAlsoWhenTheDesktopHangs) {
  program.reset();
  ASSERT_TRUE(gaveKeyboardBack());
  desk.startBar(0, Edge::Bottom);
  const auto shell = desk.start(
      {PLASMA_STAND_IN}, {{"STAND_IN_LEAVES", desk.outputs().front().name + " 0 0 1280 688"}});
  ASSERT_TRUE(shell->waitForLine("^ready$"));
  constexpr Rect kLowerEdge{800, 676, 480, 7};
  constexpr Rect kGap{0, 685, 1280, 2};
  const Image before = desk.screen().settled(kDesktop, 200ms);
  const auto isOpen = [&] { return desk.screen().area(kLowerEdge) != before.part(kLowerEdge); };
  program = desk.startCalmdeck();
  for (const bool hangs : {false, true}) {
    if (hangs) {
      shell->freeze();
      ASSERT_TRUE(closesByEscape());
      ASSERT_TRUE(desk.until([&] { return !isOpen(); }));
      desk.mustRun({"gapplication", "launch", harness::kCalmdeckName});
    }
    ASSERT_TRUE(hasKeyboard());
    EXPECT_TRUE(desk.until(isOpen));
    EXPECT_EQ(desk.screen().area(kGap), before.part(kGap));
  }
}

// As trays ask for it that draw no menus, swaybar for one.
TEST_P(WaylandPanelTest, AMenuThatItDrawsItselfIsAtThePointerAndClosesWithAPressElsewhere) {
  ASSERT_TRUE(closesByEscape());
  const auto item = desk.bus().trayItem();
  ASSERT_TRUE(item);
  const Rect second = desk.outputs().back().area;
  constexpr int kAside = 300;
  const auto menu = [&] { return changed(bare, second); };
  for (const std::string end : {"a press", "Escape"}) {
    desk.input().moveTo(second.x + kAside, kAside);
    ASSERT_TRUE(desk.bus().call(item->first, item->second, "org.kde.StatusNotifierItem.ContextMenu",
                                {"int32:9", "int32:9"}));
    // The pointer's image may stand out of it.
    EXPECT_TRUE(desk.until([&] {
      const Rect now = menu();
      return now.height > 50 && now.height < 200 && std::abs(now.x - second.x - kAside) < 20 &&
             std::abs(now.y - kAside) < 20;
    })) << menu().x
        << ',' << menu().y << ' ' << menu().height;
    if (end == "Escape") {
      desk.input().key(end);
    } else {
      desk.input().click(second.x + kAside, second.bottom() - 20);
    }
    EXPECT_TRUE(desk.until([&] { return menu().height < 50; })) << end;
  }
}

TEST_P(WaylandPanelTest, AnAlertOfThePanelsIsInFrontWithTheKeyboardAndGivesItBack) {
  ASSERT_TRUE(closesByEscape());
  ASSERT_TRUE(opensByIcon());
  ASSERT_TRUE(desk.until([&] { return panel().height > 250; }));
  const Rect open = panel();
  constexpr Rect kMiddle{600, 340, 80, 40};
  const Image withoutAlert = desk.screen().area(kMiddle);
  const auto showsAlert = [&] { return desk.screen().area(kMiddle) != withoutAlert; };
  desk.input().click(kFirstOutput.right() - 51, open.y + 34);         // the mode
  desk.input().click(kFirstOutput.right() - 40, open.bottom() - 32);  // the wallpaper: none
  ASSERT_TRUE(desk.until(showsAlert));
  desk.input().key("Return");
  EXPECT_TRUE(desk.until([&] { return !showsAlert(); })) << "it has the keyboard";
  EXPECT_TRUE(closesByEscape()) << "the panel has it again";
}

/// Where there is no tray the panel is an ordinary window, and offers the menu.
class WaylandPreferencesTest : public testing::TestWithParam<Compositor>,
                               public wayland_test::ModeDesk {
 protected:
  static constexpr const char* kRecord = "Record the shortcut for presentation mode";
  static constexpr const char* kBox = "Shortcut for presentation mode";

  WaylandPreferencesTest()
      : ModeDesk({.compositor = GetParam(),
                  .configuration = GetParam() == Compositor::Sway ? "bindsym Alt+F4 kill\n" : ""}) {
  }
  void SetUp() override {
    launch("");
    ASSERT_TRUE(reader.await("Presentation mode"));
    ASSERT_TRUE(opens());
  }

  [[nodiscard]] bool isActive(bool wanted = true) const {
    return desk.until([&] { return reader.shows("Preferences", "frame", "active") == wanted; });
  }
  /// By the keyboard; true once the window has it.
  [[nodiscard]] bool opens() const {
    if (!desk.until([&] { return reader.shows("Calmdeck", "frame", "active"); })) return false;
    desk.input().key("F10");
    if (!desk.until([&] { return reader.shows("Preferences", "menu item"); })) return false;
    for (const char* key : {"Down", "Return"}) desk.input().key(key);
    return isActive();
  }
};

// labwc lets nobody have its own keys.
INSTANTIATE_TEST_SUITE_P(Compositors, WaylandPreferencesTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway,
                                                                 Compositor::Kwin})),
                         testing::PrintToStringParamName());

TEST_P(WaylandPreferencesTest, TheCompositorsOwnShortcutIsTheWindowsOnlyWhileARowRecords) {
  desk.input().key("alt+F4");
  ASSERT_TRUE(desk.until([&] { return !reader.shows("Preferences", "frame"); }))
      << "the compositor closes the window";
  ASSERT_TRUE(opens());
  ASSERT_TRUE(reader.act(reader.await(kRecord).value()));
  ASSERT_TRUE(desk.until([&] { return reader.shows(kBox, "panel", "selected"); }));
  desk.input().key("alt+F4");
  EXPECT_TRUE(program->waitForLine("^118$")) << "the key that the platform has for F4";
  EXPECT_TRUE(reader.shows("Preferences", "frame"));
}

/// Where a program may bring its windows forward by itself.
class WaylandRecallTest : public WaylandPreferencesTest {};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandRecallTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway,
                                                                 Compositor::Labwc})),
                         testing::PrintToStringParamName());

TEST_P(WaylandRecallTest, OpenPreferencesComeToTheUserWhoAsksForThem) {
  if (GetParam() == Compositor::Sway) {
    desk.mustRun({"swaymsg", "workspace 9"});
  }
  desk.openWindow("other", 0xc02030);
  ASSERT_TRUE(isActive(false));
  desk.perform("preferences");
  EXPECT_TRUE(isActive());
}

/// Where one window may come to the user without the other.
class SwayRecallTest : public WaylandPreferencesTest {};

INSTANTIATE_TEST_SUITE_P(On, SwayRecallTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway})),
                         testing::PrintToStringParamName());

TEST_P(SwayRecallTest, OpenPreferencesComeWithTheDialogThatTheyWaitFor) {
  const auto dialogIsActive = [&](bool wanted) {
    return desk.until(
        [&] { return reader.shows("Please select an image", {}, "active") == wanted; });
  };
  ASSERT_TRUE(reader.act(reader.await("Choose the wallpaper").value()));
  ASSERT_TRUE(dialogIsActive(true));
  desk.mustRun({"swaymsg", "workspace 9"});
  ASSERT_TRUE(dialogIsActive(false));
  desk.perform("preferences");
  EXPECT_TRUE(dialogIsActive(true));
}

}  // namespace
