#include "platform/appkit/NSStoryboard.h"

#include <gmock/gmock.h>

#include <array>
#include <functional>
#include <set>

#include "platform/appkit/NSButton.h"
#include "platform/foundation/ClassRegistry.h"
#include "support/ApplicationTest.h"

namespace app {
namespace {

using platform::NSStoryboard;
using ::testing::ElementsAre;
using ::testing::StartsWith;

class StoryboardTest : public tests::ApplicationTest {
 protected:
  /// The problems of a description whose one scene has a plain controller with this inside.
  static std::vector<std::string> problemsOf(const std::string& inside) {
    return problemsOfScenes("<scene identifier='a'><viewController class='Plain'>" + inside +
                            "</viewController></scene>");
  }
  static std::vector<std::string> problemsOfScenes(const std::string& scenes) {
    auto& registry = platform::ClassRegistry::shared();
    registry.add<PlainController>("Plain");
    return NSStoryboard("<storyboard><applicationDelegate class='AppDelegate'/>" + scenes +
                        "</storyboard>")
        .problems();
  }

 private:
  class PlainController final : public platform::NSViewController {
   public:
    static std::shared_ptr<PlainController> initWithCoder(const platform::NSCoder&) {
      return std::make_shared<PlainController>();
    }
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

TEST_F(StoryboardTest, EverySwitchOfThePanelIsReachableAndSaysWhatItIs) {
  launch();
  std::set<std::string> labels;
  for (const auto& outlet :
       {panel().toggleButtonPresentationMode, panel().toggleButtonHideDesktopIcons,
        panel().toggleButtonDisableNotifications, panel().toggleButtonHideActiveApps,
        panel().toggleButtonTurnOffSpeaker, panel().toggleButtonChangeWallpaper}) {
    const auto toggle = outlet.lock();
    ASSERT_TRUE(toggle);
    EXPECT_TRUE(labels.insert(toggle->accessibilityLabel()).second);
    EXPECT_NE(toggle->accessibilityHelp(), "");
    EXPECT_TRUE(toggle->acceptsFirstResponder());
  }
}

TEST_F(StoryboardTest, EveryControlOfThePreferencesHasANameOfItsOwn) {
  launch();
  delegate().showPreferences();
  std::set<std::string> names;
  const std::function<void(const platform::NSView&)> visit = [&](const platform::NSView& view) {
    if (const auto* button = dynamic_cast<const platform::NSButton*>(&view)) {
      const std::string& label = button->accessibilityLabel();
      EXPECT_TRUE(names.insert(label.empty() ? button->title() : label).second) << label;
      EXPECT_NE(button->action(), "");
    }
    for (const auto& inner : view.subviews()) visit(*inner);
  };
  visit(*sharedPreferencesWindowController()->window()->contentView());
  EXPECT_EQ(names.size(), 6U);
}

TEST_F(StoryboardTest, WhatIsWrongWithASceneIsNamed) {
  const struct {
    const char* inside;
    const char* problem;
  } rows[] = {
      {"", "no view of a controller at <viewController>"},
      {"<view/><view/>", "a second view of a controller at <view>"},
      {"<textfield text='x'/>", "no class 'textfield' at <textfield>"},
      {"<customView class='Toggle'/>", "no class 'Toggle' at <customView>"},
      {"<customView class='AppDelegat'/>", "no class 'AppDelegat' at <customView>"},
      {"<customView class='ViewController'/>", "no view at <customView>"},
      {"<view hidden='maybe'/>", "attributes that 'view' cannot read at <view>"},
      {"<view contentScale='0'/>", "attributes that 'view' cannot read at <view>"},
      {"<view contentScale='inf'/>", "attributes that 'view' cannot read at <view>"},
      {"<view hiden='true'/>", "no attribute 'hiden' of 'view' at <view>"},
      {"<stackView orientation='diagonal'/>", "attributes that 'stackView' cannot read"},
      {"<stackView spacing='wide'/>", "attributes that 'stackView' cannot read"},
      {"<textField textStyle='shouted'/>", "attributes that 'textField' cannot read"},
      {"<textField textColor='#12345'/>", "attributes that 'textField' cannot read"},
      {"<imageView image='no-such-picture'/>", "attributes that 'imageView' cannot read"},
      {"<textField content='picture'/>", "attributes that 'textField' cannot read"},
      {"<box borderColor='bluish'><view/></box>", "attributes that 'box' cannot read"},
      {"<box/>", "not one view in a box at <box>"},
      {"<box><view/><view/></box>", "not one view in a box at <box>"},
      {"<button state='on'/>", "no attribute 'state' of 'button' at <button>"},
      {"<checkbox action='doThat:'/>", "no message 'doThat:' of that class at <checkbox>"},
      {"<view><view id='a'/><view id='a'/></view>", "a second use of an id at <view>"},
      {"<customView class='CToggleButton'><attribute key='isOf' value='true'/></customView>",
       "no key 'isOf' of such a value at <attribute>"},
      {"<customView class='CToggleButton'><attribute key='isOn' value='yes'/></customView>",
       "no key 'isOn' of such a value at <attribute>"},
      {"<view id='a'/><outlet property='x' destination='a'/>",
       "no outlet 'x' of that class at <outlet>"},
      {"<view/><outlet property='x' destination='b'/>",
       "an outlet without destination at <outlet>"},
  };
  for (const auto& row : rows) {
    const std::vector<std::string> problems = problemsOf(row.inside);
    ASSERT_FALSE(problems.empty()) << row.inside;
    EXPECT_THAT(problems.front(), StartsWith(row.problem)) << row.inside;
  }
  EXPECT_THAT(problemsOf("<stackView spacing='1.5'><separator/><view/></stackView>"),
              ElementsAre());
  EXPECT_THAT(problemsOf("<box><button title='x' action='act:'/></box>"), ElementsAre());
}

TEST_F(StoryboardTest, WhatIsWrongWithTheWholeIsNamed) {
  const std::string view = "<viewController class='Plain'><view/></viewController>";
  EXPECT_THAT(problemsOfScenes("<scene>" + view + "</scene>"),
              ElementsAre(StartsWith("no identifier of its own at <scene>")));
  EXPECT_THAT(problemsOfScenes("<scene identifier='a'>" + view + "</scene><scene identifier='a'>" +
                               view + "</scene>"),
              ElementsAre(StartsWith("no identifier of its own at <scene>")));
  EXPECT_THAT(problemsOfScenes("<scene identifier='a'/>"),
              ElementsAre(StartsWith("no view controller at <scene>")));
  EXPECT_THAT(problemsOfScenes("<scene identifier='a'><viewController class='Gone'/></scene>"),
              ElementsAre(StartsWith("no class 'Gone'")));
  EXPECT_THAT(
      problemsOfScenes("<scene identifier='a'><viewController class='CToggleButton'/></scene>"),
      ElementsAre(StartsWith("a class that is no view controller")));
  const std::string window = "<scene identifier='a'><windowController class='";
  EXPECT_THAT(problemsOfScenes(window + "preferencesWindowController' title='A'>" + view +
                               "</windowController></scene>"),
              ElementsAre());
  EXPECT_THAT(problemsOfScenes(window + "preferencesWindowController'/></scene>"),
              ElementsAre(StartsWith("no view controller at <windowController>")));
  EXPECT_THAT(problemsOfScenes(window + "Plain'>" + view + "</windowController></scene>"),
              ElementsAre(StartsWith("a class that is no window controller")));
  EXPECT_THAT(problemsOfScenes(window + "preferencesWindowController' wide='yes'>" + view +
                               "</windowController></scene>"),
              ElementsAre(StartsWith("no attribute 'wide'")));
  EXPECT_THAT(problemsOfScenes("<window/>"),
              ElementsAre(StartsWith("neither a scene nor an application delegate at <window>")));
  EXPECT_THAT(NSStoryboard("<storyboard/>").problems(),
              ElementsAre(StartsWith("no application delegate")));
  EXPECT_FALSE(NSStoryboard("<storyboard>").problems().empty());
}

TEST_F(StoryboardTest, AnOutletThatNobodyConnectsIsNamed) {
  EXPECT_EQ(problemsOfScenes("<scene identifier='a'><viewController class='ViewController'><view/>"
                             "</viewController></scene>")
                .size(),
            7U);
}

TEST_F(StoryboardTest, UsingABrokenDescriptionEndsTheProgramByName) {
  NSStoryboard broken(
      "<storyboard><scene identifier='a'><viewController class='ViewController'/></scene>"
      "</storyboard>");
  EXPECT_DEATH(static_cast<void>(broken.instantiateControllerWithIdentifier("b")),
               "programming error: storyboard: no scene 'b'");
  EXPECT_DEATH(static_cast<void>(broken.instantiateApplicationDelegate()), "no class ''");
  const auto controller = std::dynamic_pointer_cast<platform::NSViewController>(
      broken.instantiateControllerWithIdentifier("a"));
  EXPECT_DEATH(controller->loadViewIfNeeded(), "no view of a controller");
  EXPECT_DEATH(static_cast<void>(NSStoryboard::storyboardWithName("Other", nullptr)),
               "no storyboard 'Other'");
}

}  // namespace
}  // namespace app
