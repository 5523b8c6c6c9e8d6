#include "platform/appkit/NSStoryboard.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <utility>

#include "platform/foundation/NSCoder.h"
#include "preferences/ShortcutState.h"
#include "preferences/generalVc.h"
#include "support/ApplicationTest.h"

namespace app {
namespace {

using platform::NSStoryboard;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class StoryboardTest : public tests::ApplicationTest {
 protected:
  StoryboardTest() { platform::ClassRegistry::shared().add<PlainController>("Plain"); }
  static std::vector<std::string> problemsOf(const std::string& scenes) {
    return NSStoryboard("<storyboard><applicationDelegate class='AppDelegate'/>" + scenes +
                        "</storyboard>")
        .problems();
  }

 private:
  class PlainController final : public platform::NSViewController {
   public:
    void act() {}
    [[nodiscard]] const platform::ClassDescription& classDescription() const override {
      static constexpr std::array messages{platform::message<&PlainController::act>("act:")};
      static constexpr platform::ClassDescription description{.className = "Plain",
                                                              .messages = messages};
      return description;
    }
  };
};

TEST_F(StoryboardTest, TheProgramsOwnHasNoProblems) {
  EXPECT_EQ(NSStoryboard::storyboardWithName("Main", nullptr)->problems(),
            std::vector<std::string>{});
}

/// Another language, in which every text is in brackets.
class Brackets final : public platform::port::Texts {
 public:
  [[nodiscard]] std::string localized(std::string_view text) const override {
    return text.empty() ? std::string() : "[" + std::string(text) + "]";
  }
};

/// Of a view and all in it, what is not in brackets.
void gatherEnglish(const platform::NSView& view, std::vector<std::string>& english) {
  std::vector<std::string> texts{view.accessibilityLabel(), view.accessibilityHelp()};
  if (const auto* field = dynamic_cast<const platform::NSTextField*>(&view)) {
    texts.push_back(field->stringValue());
  }
  if (const auto* button = dynamic_cast<const platform::NSButton*>(&view)) {
    texts.push_back(button->title());
  }
  std::ranges::copy_if(texts, std::back_inserter(english), [](const std::string& text) {
    return !text.empty() && !text.starts_with('[');
  });
  for (const auto& child : view.subviews()) gatherEnglish(*child, english);
}

TEST_F(StoryboardTest, EveryTextIsInTheUsersLanguage) {
  Brackets brackets;
  desk.desktop.texts = &brackets;
  desk.availability.obstacles = {{platform::port::Capability::DoNotDisturb, "[nobody]"}};
  launch();
  std::vector<std::string> english;
  gatherEnglish(*panel().view(), english);
  EXPECT_EQ(desk.tray.toolTip(), "[Calmdeck: presentation mode is off]");
  click(panel().toggleButtonPresentationMode);
  EXPECT_EQ(desk.tray.toolTip(), "[Calmdeck: presentation mode is on]");
  desk.loop.whenWaiting([this] {
    EXPECT_EQ(desk.screen.alerts().back().message, "[Please add a wallpaper in settings.]");
    EXPECT_EQ(desk.screen.alerts().back().buttons, std::vector<std::string>{"[OK]"});
    desk.screen.answerAlert(0);
  });
  click(panel().toggleButtonChangeWallpaper);
  gatherEnglish(*panel().view(), english);
  desk.tray.rightClick();
  EXPECT_EQ(desk.tray.menu(),
            (std::vector<std::string>{"[Preferences]", "[Check for Updates]", "[Quit]"}));
  desk.tray.choose("[Preferences]");
  desk.loop.settle();
  const auto pane = preferences::shortcutState().currentGeneralVc;
  gatherEnglish(*pane->view(), english);
  EXPECT_EQ(pane->view()->window()->title(), "[Preferences]");
  click(pane->btnRecordShortcutToggleApp);
  gatherEnglish(*pane->view(), english);
  sharedPreferencesWindowController()->showShortcutUnavailableAlert();
  desk.loop.settle();
  EXPECT_EQ(desk.screen.alerts().back().message, "[Please use a different key combination.]");
  EXPECT_TRUE(desk.screen.alerts().back().informative.starts_with("[Not available: "));
  desk.screen.answerAlert(0);
  desk.loop.settle();
  desk.loop.whenWaiting([this] {
    EXPECT_EQ(desk.screen.openPanel()->message, "[Please select an image]");
    EXPECT_EQ(desk.screen.openPanel()->prompt, "[Select]");
    desk.screen.answerOpenPanel(std::nullopt);
  });
  click(pane->btnChangeWallpaper);
  EXPECT_EQ(english, std::vector<std::string>{});
}

const std::string kScene = "<scene identifier='a'>";
const std::string kView = "<viewController class='Plain'><view/></viewController>";
const std::string kWindow = kScene + "<windowController class='";
const std::string kWindowEnd = kView + "</windowController></scene>";

/// A scene of a plain controller with this inside.
std::string plain(const std::string& inside) {
  return kScene + "<viewController class='Plain'>" + inside + "</viewController></scene>";
}

TEST_F(StoryboardTest, WhatIsWrongIsNamed) {
  const std::pair<std::string, const char*> rows[] = {
      {plain(""), "no view of a controller at <viewController>"},
      {plain("<view/><view/>"), "a second view of a controller at <view>"},
      {plain("<textfield text='x'/>"), "no class 'textfield' at <textfield>"},
      {plain("<customView class='Toggle'/>"), "no class 'Toggle' at <customView>"},
      {plain("<customView class='ViewController'/>"), "no view at <customView>"},
      {plain("<view hidden='maybe'/>"), "attributes that 'view' cannot read at <view>"},
      {plain("<view hiden='true'/>"), "no attribute 'hiden' of 'view' at <view>"},
      {plain("<stackView orientation='diagonal'/>"), "attributes that 'stackView' cannot read"},
      {plain("<imageView image='no-such-picture'/>"), "attributes that 'imageView' cannot read"},
      {plain("<box/>"), "not one view in a box at <box>"},
      {plain("<checkbox action='doThat:'/>"), "no message 'doThat:' of that class at <checkbox>"},
      {plain("<view><view id='a'/><view id='a'/></view>"), "a second use of an id at <view>"},
      {plain("<customView class='CToggleButton'><attribute key='isOf' value='true'/></customView>"),
       "no key 'isOf' of such a value at <attribute>"},
      {plain("<customView class='CToggleButton'><attribute key='isOn' value='yes'/></customView>"),
       "no key 'isOn' of such a value at <attribute>"},
      {plain("<view id='a'/><outlet property='x' destination='a'/>"),
       "no outlet 'x' of that class at <outlet>"},
      {plain("<view/><outlet property='x' destination='b'/>"),
       "an outlet without destination at <outlet>"},
      {"<scene>" + kView + "</scene>", "no identifier of its own at <scene>"},
      {plain("<view/>") + plain("<view/>"), "no identifier of its own"},
      {kScene + "</scene>", "no view controller at <scene>"},
      {kScene + "<viewController class='Gone'/></scene>", "no class 'Gone'"},
      {kScene + "<viewController class='CToggleButton'/></scene>",
       "a class that is no view controller"},
      {kWindow + "preferencesWindowController'/></scene>",
       "no view controller at <windowController>"},
      {kWindow + "Plain'>" + kWindowEnd, "a class that is no window controller"},
      {kWindow + "preferencesWindowController' wide='yes'>" + kWindowEnd, "no attribute 'wide'"},
      {"<window/>", "neither a scene nor an application delegate at <window>"},
  };
  for (const auto& [scenes, problem] : rows) {
    const std::vector<std::string> problems = problemsOf(scenes);
    ASSERT_FALSE(problems.empty()) << scenes;
    EXPECT_THAT(problems.front(), StartsWith(problem)) << scenes;
  }
  EXPECT_THAT(problemsOf(plain("<box><button title='x' action='act:'/></box>")), ElementsAre());
  EXPECT_THAT(NSStoryboard("<storyboard/>").problems(),
              ElementsAre(StartsWith("no application delegate")));
  EXPECT_FALSE(NSStoryboard("<storyboard>").problems().empty());
  // An outlet that nobody connects.
  EXPECT_EQ(
      problemsOf(kScene + "<viewController class='ViewController'><view/></viewController></scene>")
          .size(),
      13U);
}

TEST_F(StoryboardTest, UsingABrokenDescriptionEndsTheProgramByName) {
  NSStoryboard broken("<storyboard/>");
  EXPECT_DEATH(static_cast<void>(broken.instantiateControllerWithIdentifier("b")),
               "programming error: storyboard: no scene 'b'");
}

}  // namespace
}  // namespace app
