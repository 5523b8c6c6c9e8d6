// The panel and the preferences as a compositor has them, seen and driven from outside.

#include <gmock/gmock.h>

#include <cstdlib>
#include <regex>

#include "desktop/harness/AccessibilityClient.h"
#include "desktop/harness/WaylandDesk.h"

using harness::AccessibilityClient;
using harness::Bar;
using harness::Button;
using harness::Compositor;
using harness::Image;
using harness::Rect;
using harness::WaylandDesk;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr const char* kName = "org.calmdeck.Calmdeck";
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
  /// Never twice at one place: a double click is told of as three clicks.
  void clickIcon() {
    const auto icon = desk.trayIcon().value();
    aside = -aside;
    desk.input().click(icon.centreX() + aside, icon.centreY());
  }
  /// What has changed below the bar since the program came; empty: nothing.
  [[nodiscard]] Rect panel(const Rect& icon) const {
    const Rect below{0, icon.bottom() + 4, WaylandDesk::kOutputWidth,
                     WaylandDesk::kOutputHeight - icon.bottom() - 4};
    const auto changed = harness::changedArea(bare.part(below), desk.screen().area(below));
    if (!changed) return {};
    return {changed->x, changed->y + below.y, changed->width, changed->height};
  }

  /// Clicks the first of the small switches, of a panel in the upper right corner below the bar,
  /// and sees it stored.
  [[nodiscard]] bool turnsASwitch(const Rect& icon) const {
    const auto stored = [this] {
      return harness::textOf(desk.home().config() / "calmdeck" / "settings.json");
    };
    const std::string before = stored();
    desk.input().click(kFirstOutput.right() - 40, icon.bottom() + 98);
    return desk.until([&] { return stored() != before; });
  }

  /// Without borders, which would show who has the keyboard.
  WaylandDesk desk{
      {.compositor = GetParam(),
       .bar = Bar::Waybar,
       .configuration = GetParam() == Compositor::Sway ? "default_border none\n" : ""}};
  harness::ForeignWindow& slides = desk.openWindow("slides", 0xc02030);
  Image bare;
  int aside = 4;
  std::unique_ptr<harness::Process> program;
};

INSTANTIATE_TEST_SUITE_P(Compositors, WaylandPanelTest,
                         testing::ValuesIn(harness::installedCompositors()),
                         testing::PrintToStringParamName());

TEST_P(WaylandPanelTest, OpensAtTheIconAgainAndAgainWithTheKeyboard) {
  desk.input().key("Escape");
  ASSERT_TRUE(gaveKeyboardBack()) << "Escape reached it at once";
  const Rect icon = desk.trayIcon().value();
  for (int round = 0; round < 2; ++round) {
    clickIcon();
    ASSERT_TRUE(hasKeyboard());
    EXPECT_TRUE(desk.until([&] {
      const Rect now = panel(icon);
      return !now.empty() && kFirstOutput.contains(now) && now.y < icon.bottom() + 20 &&
             now.height > 100 && now.x <= icon.centreX() && icon.centreX() <= now.right();
    })) << "it is below the icon, at "
        << panel(icon).x << "," << panel(icon).y;
    EXPECT_TRUE(turnsASwitch(icon)) << "a press on it is its own";
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
  clickIcon();
  ASSERT_TRUE(hasKeyboard());
  const Rect icon = desk.trayIcon().value();
  ASSERT_TRUE(desk.until([&] { return panel(icon).height > 100; }));
  const Rect inside{icon.centreX() - 60, icon.bottom() + 40, 40, 40};
  const auto isBare = [&] { return desk.screen().area(inside) == bare.part(inside); };
  ASSERT_FALSE(isBare());
  const Rect second = desk.outputs().back().area;
  desk.input().click(second.centreX(), second.bottom() - 20);
  EXPECT_TRUE(desk.until(isBare)) << "on another monitor";
}

TEST_P(WaylandPanelTest, APressOnAWindowThatFillsTheScreenClosesIt) {
  desk.input().key("Escape");
  ASSERT_TRUE(gaveKeyboardBack());
  desk.input().key("F11");
  Rect filled;
  ASSERT_TRUE(desk.until([&] {
    filled = desk.areaOf(slides.colour).value_or(Rect());
    return filled.width == kFirstOutput.width && filled.height == kFirstOutput.height;
  }));
  ASSERT_TRUE(desk.run({"gapplication", "launch", kName}).succeeded());
  ASSERT_TRUE(hasKeyboard());
  desk.input().click(filled.centreX(), filled.bottom() - 40);
  EXPECT_TRUE(gaveKeyboardBack());
}

TEST_P(WaylandPanelTest, OpensByItselfOnTheMonitorThatHasTheBar) {
  const std::vector<harness::WaylandOutput> outputs = desk.outputs();
  for (std::size_t place = 0; place < outputs.size(); ++place) {
    program.reset();
    ASSERT_TRUE(gaveKeyboardBack());
    desk.startBar(Bar::Waybar, place);
    const Image before = desk.screen().settled(kDesktop, 200ms, harness::kPatience);
    program = desk.startCalmdeck();
    ASSERT_TRUE(hasKeyboard());
    const auto isOn = [&](const Rect& output) {
      const Rect below{output.x, 40, output.width, output.height - 40};
      const auto panel = harness::changedArea(before.part(below), desk.screen().area(below));
      return panel && panel->height > 100;
    };
    for (std::size_t i = 0; i < outputs.size(); ++i)
      EXPECT_TRUE(desk.until([&] { return isOn(outputs[i].area) == (i == place); })) << place << i;
  }
}

// As trays ask for it that draw no menus, swaybar for one.
TEST_P(WaylandPanelTest, AMenuThatItDrawsItselfIsAtThePointerAndClosesWithAPressElsewhere) {
  desk.input().key("Escape");
  ASSERT_TRUE(gaveKeyboardBack());
  const std::string watcher = "org.kde.StatusNotifierWatcher";
  const std::string items =
      desk.bus()
          .property(watcher, "/StatusNotifierWatcher", watcher, "RegisteredStatusNotifierItems")
          .value();
  std::smatch item;
  ASSERT_TRUE(std::regex_search(items, item, std::regex("(:[0-9.]+)(/[A-Za-z]+)"))) << items;
  const Rect second = desk.outputs().back().area;
  constexpr int kAside = 300;
  const Image before = desk.screen().area(second);
  const auto menu = [&] {
    return harness::changedArea(before, desk.screen().area(second)).value_or(Rect());
  };
  for (const std::string end : {"a press", "Escape"}) {
    desk.input().moveTo(second.x + kAside, kAside);
    ASSERT_TRUE(desk.bus().call(item[1], item[2], "org.kde.StatusNotifierItem.ContextMenu",
                                {"int32:9", "int32:9"}));
    // The pointer's image may stand out of it.
    EXPECT_TRUE(desk.until([&] {
      const Rect now = menu();
      return now.height > 50 && now.height < 200 && std::abs(now.x - kAside) < 20 &&
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
  desk.input().key("Escape");
  ASSERT_TRUE(gaveKeyboardBack());
  const Rect icon = desk.trayIcon().value();
  clickIcon();
  ASSERT_TRUE(hasKeyboard());
  ASSERT_TRUE(desk.until([&] { return panel(icon).height > 250; }));
  const Rect panel = this->panel(icon);
  constexpr Rect kMiddle{600, 340, 80, 40};
  const Image withoutAlert = desk.screen().area(kMiddle);
  const auto showsAlert = [&] { return desk.screen().area(kMiddle) != withoutAlert; };
  desk.input().click(kFirstOutput.right() - 51, panel.y + 34);  // the mode
  desk.input().click(kFirstOutput.right() - 40,
                     panel.bottom() - 32);  // the wallpaper: there is none
  ASSERT_TRUE(desk.until(showsAlert));
  desk.input().key("Return");
  EXPECT_TRUE(desk.until([&] { return !showsAlert(); })) << "it has the keyboard";
  desk.input().key("Escape");
  EXPECT_TRUE(gaveKeyboardBack()) << "the panel has it again";
}

/// Where there is no tray the panel is an ordinary window, and offers the menu.
class WaylandPreferencesTest : public testing::TestWithParam<Compositor> {
 protected:
  static constexpr const char* kRecord = "Record the shortcut for presentation mode";
  static constexpr const char* kBox = "Shortcut for presentation mode";

  void SetUp() override { ASSERT_TRUE(reader.await("Presentation mode")); }

  /// By the keyboard; true once the window has it.
  [[nodiscard]] bool opens() const {
    if (!desk.until([&] { return reader.shows("Calmdeck", "frame", "active"); })) return false;
    desk.input().key("F10");
    if (!desk.until([&] { return reader.shows("Preferences", "menu item"); })) return false;
    for (const char* key : {"Down", "Return"}) desk.input().key(key);
    return desk.until([&] { return reader.shows("Preferences", "frame", "active"); });
  }

  WaylandDesk desk{
      {.compositor = GetParam(),
       .configuration = GetParam() == Compositor::Sway ? "bindsym Alt+F4 kill\n" : ""}};
  AccessibilityClient reader{desk};
  std::unique_ptr<harness::Process> program =
      desk.startCalmdeck(AccessibilityClient::accessibleEnvironment());
};

// labwc lets nobody have its own keys.
INSTANTIATE_TEST_SUITE_P(Compositors, WaylandPreferencesTest,
                         testing::ValuesIn(harness::installedOf({Compositor::Sway,
                                                                 Compositor::Kwin})),
                         testing::PrintToStringParamName());

TEST_P(WaylandPreferencesTest, TheCompositorsOwnShortcutIsTheWindowsOnlyWhileARowRecords) {
  ASSERT_TRUE(opens());
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
  ASSERT_TRUE(opens());
  if (GetParam() == Compositor::Sway) {
    ASSERT_TRUE(desk.run({"swaymsg", "workspace 9"}).succeeded());
  }
  desk.openWindow("other", 0xc02030);
  ASSERT_TRUE(desk.until([&] { return !reader.shows("Preferences", "frame", "active"); }));
  desk.perform("preferences");
  EXPECT_TRUE(desk.until([&] { return reader.shows("Preferences", "frame", "active"); }));
}

}  // namespace
