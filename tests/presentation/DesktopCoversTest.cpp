#include <gmock/gmock.h>

#include "platform/appkit/NSWindowController.h"
#include "presentation/FeatureTest.h"

namespace presentation {
namespace {

using namespace std::chrono_literals;
using platform::Dictionary;
using platform::port::ScreenInfo;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const ScreenInfo kLeft{"A", {0, 0, 1280, 720}, 1};
const ScreenInfo kRight{"B", {1280, 120, 1024, 600}, 1};
const ScreenInfo kThird{"C", {2304, 0, 800, 600}, 1};

class DesktopCoversTest : public CoversTest {
 protected:
  DesktopCoversTest() {
    desk.displays.list = {kLeft, kRight};
    addPicture(kRight, "right");
    addPicture(kLeft, "left");
  }
  /// The program runs, and the mode goes on.
  void cover() {
    launchCovering();
    clickMaster();
  }
  /// Screens came or went.
  void setScreens(std::vector<ScreenInfo> screens) {
    desk.displays.list = std::move(screens);
    desk.displays.changed();
    desk.loop.settle();
  }
};

// --- Covers and their pictures ---

TEST_F(DesktopCoversTest, EveryScreenGetsACoverBehindAllAndThenItsPicture) {
  launchCovering();
  EXPECT_EQ(
      entriesOf([this] { clickMaster(); }),
      (Calls{"statusItem.setImage logo-active-small",
             "window.show behind at level -20, 0 0 1280 720 empty",
             "window.show behind at level -20, 1280 120 1024 600 empty", "windowList.capture 1",
             "windowList.capture 2", "window.update 0 0 1280 720 showing left",
             "window.update 1280 120 1024 600 showing right"}));
  ASSERT_EQ(desk.screen.covers().size(), 2U);
  EXPECT_EQ(desk.screen.covers()[1]->style(), platform::NSWindowStyle::Borderless);
  EXPECT_EQ(entriesOf([this] { clickMaster(); }),
            (Calls{"statusItem.setImage logo-initial-small", "window.hide", "window.hide"}));
  EXPECT_THAT(desk.screen.covers(), IsEmpty());
  EXPECT_EQ(desk.screen.windowCount(), 1U);  // the panel's
}

struct Picture {
  const char* name;
  std::size_t width;
  std::size_t height;
};
struct MatchRow {
  const char* name;
  std::vector<ScreenInfo> screens;
  std::vector<Picture> pictures;
  std::vector<std::string> shown;  ///< by cover; empty for none
};

ScreenInfo screen(double width, double height, double scale = 1) {
  return {"A", {0, 0, width, height}, scale};
}

const MatchRow kMatches[] = {
    {"same size: in the order of the captures",
     {screen(800, 600), screen(800, 600)},
     {{"first", 800, 600}, {"second", 800, 600}, {"third", 800, 600}},
     {"first", "second"}},
    {"double density takes twice the points",
     {screen(1440, 900, 2)},
     {{"points", 1440, 900}, {"pixels", 2880, 1800}},
     {"pixels"}},
    {"three halves take the points",
     {screen(1200, 800, 1.5)},
     {{"pixels", 1800, 1200}, {"points", 1200, 800}},
     {"points"}},
    {"nearly two is not two",
     {screen(640, 480, 1.9999999)},
     {{"pixels", 1280, 960}, {"points", 640, 480}},
     {"points"}},
    {"exactly, or not at all",
     {screen(800, 600), screen(1366.5, 768), screen(640, 400, 1.25)},
     {{"turned", 600, 800}, {"wide", 801, 600}, {"low", 800, 599}, {"1", 1366, 768}, {"0", 0, 0}},
     {"", "", ""}},
    {"a screen without one takes none from the next",
     {screen(640, 480), screen(800, 600)},
     {{"b", 800, 600}},
     {"", "b"}},
};

TEST_F(DesktopCoversTest, APictureBelongsToTheScreenOfItsSize) {
  launchCovering();
  for (const MatchRow& row : kMatches) {
    SCOPED_TRACE(row.name);
    desk.displays.list = row.screens;
    clearPictures();
    for (const Picture& picture : row.pictures) {
      addPicture(picture.name, picture.width, picture.height);
    }
    clickMaster();
    EXPECT_EQ(shown(), row.shown);
    clickMaster();
  }
}

TEST_F(DesktopCoversTest, OnlyDesktopPicturesAreCaptured) {
  const auto window = [](const platform::Value& owner, const platform::Value& name,
                         const platform::Value& number) {
    return Dictionary{
        {"kCGWindowOwnerName", owner}, {"kCGWindowName", name}, {"kCGWindowNumber", number}};
  };
  cover();
  const std::string name = "Desktop Picture";
  desk.windowsOnScreen.list = {
      Dictionary{},
      window("dock", name, 7),
      window("Dock", 7, 7),
      window("Dock", "A Desktop Picture", 7),
      window("Dock", name, -1),
      window("Dock", name, std::int64_t{4294967296}),
      window("Dock", name, 7.5),
      // And these are:
      window("Dock", name, std::int64_t{4294967295}),
      window("Dock", "Desktop Pictures of mine", 0),
  };
  EXPECT_EQ(callsOf([this] { changeSpace(); }, "windowList"),
            (Calls{"windowList.capture 4294967295", "windowList.capture 0"}));
  EXPECT_THAT(shown(), ElementsAre("left", "right"));
}

TEST_F(DesktopCoversTest, WhatCannotBeCapturedLeavesThatCoverAsItWas) {
  launchCovering();
  desk.windowsOnScreen.captures.erase(1);  // the right one
  clickMaster();
  EXPECT_THAT(shown(), ElementsAre("left", ""));
  clearPictures();
  addPicture(kRight, "right at last");
  changeSpace();
  EXPECT_THAT(shown(), ElementsAre("left", "right at last"));
  for (const bool hasList : {false, true}) {
    desk.windowsOnScreen.list.reset();
    desk.desktop.windowList = hasList ? &desk.windowsOnScreen : nullptr;
    changeSpace();
    EXPECT_THAT(shown(), ElementsAre("left", "right at last"));
  }
  EXPECT_THAT(desk.output.lines, IsEmpty());
}

// --- Other screens ---

TEST_F(DesktopCoversTest, ANewScreenIsCoveredAtOnceAndFilledASecondLater) {
  desk.displays.list = {kLeft};
  cover();
  addPicture(kThird, "third");
  desk.log.clear();
  setScreens({kLeft, kRight, kThird});
  EXPECT_THAT(desk.log.entries(),
              ElementsAre("print nil", "print userInfo", "print userinfo *****",
                          "window.show behind at level -20, 1280 120 1024 600 empty",
                          "window.show behind at level -20, 2304 0 800 600 empty"));
  desk.loop.advance(1s - 1ns);
  EXPECT_THAT(shown(), ElementsAre("left", "", ""));
  desk.loop.advance(1ns);
  EXPECT_THAT(shown(), ElementsAre("left", "right", "third"));
}

TEST_F(DesktopCoversTest, ChangesInQuickSuccessionLeadToOneRefresh) {
  cover();
  for (int round = 0; round < 2; ++round) {
    desk.log.clear();
    for (int i = 0; i < 3; ++i) {
      setScreens({kLeft, kRight});
      desk.loop.advance(900ms);
    }
    EXPECT_THAT(desk.log.calls(), IsEmpty());
    desk.loop.advance(1h);
    EXPECT_THAT(desk.log.calls("windowList"),
                ElementsAre("windowList.capture 1", "windowList.capture 2"));
  }
}

TEST_F(DesktopCoversTest, ACoverOutlivesItsScreenUntilAllAreTakenDown) {
  cover();
  setScreens({kLeft});
  desk.loop.advance(1s);
  EXPECT_EQ(desk.screen.covers().size(), 2U);
  EXPECT_THAT(shown(), ElementsAre("left", "right"));
  desk.log.clear();
  setScreens({kLeft, kRight});
  EXPECT_THAT(desk.log.calls("window.show"), IsEmpty());
  setScreens({kLeft});
  clickMaster();
  EXPECT_EQ(desk.screen.covers().size(), 0U);
}

TEST_F(DesktopCoversTest, ACoverMovesTogetherWithItsPictureAndNotWithoutOne) {
  cover();
  desk.log.clear();
  setScreens({kRight, kLeft});
  desk.loop.advance(1s);
  const Calls moved{"window.update 1280 120 1024 600 showing right",
                    "window.update 0 0 1280 720 showing left"};
  EXPECT_EQ(desk.log.calls("window."), moved);
  desk.log.clear();
  setScreens({{"A", {0, 0, 1920, 1080}, 1}, kLeft});
  desk.loop.advance(1s);
  EXPECT_THAT(desk.log.calls("window."), ElementsAre(moved[1]));
  EXPECT_EQ(desk.screen.covers()[0]->frame(), kRight.frame);
}

TEST_F(DesktopCoversTest, ATimerThatOutlivesTheCoversFillsTheNextOnesWhereThereAreAny) {
  cover();
  setScreens({kLeft, kRight});
  clickMaster();
  clearPictures();
  clickMaster();
  EXPECT_THAT(shown(), Each(""));
  addPicture(kLeft, "late");
  desk.loop.advance(1s);
  EXPECT_THAT(shown(), ElementsAre("late", ""));
  setScreens({kLeft, kRight, kThird});
  clickMaster();
  EXPECT_THAT(callsOf([this] { desk.loop.advance(1s); }, "window."), IsEmpty());
  // With the feature off it does not even look.
  clickMaster();
  setScreens({kLeft, kRight});
  click(panel().toggleButtonHideDesktopIcons);
  EXPECT_THAT(callsOf([this] { desk.loop.advance(1s); }), IsEmpty());
}

TEST_F(DesktopCoversTest, AControllerLetsGoOfACoverThatGoesDown) {
  cover();
  const auto cover = panel().transWindow()[0];
  const auto controller = std::make_shared<platform::NSWindowController>();
  controller->setWindow(cover);
  cover->setWindowController(controller);
  clickMaster();
  EXPECT_EQ(controller->window(), nullptr);
  EXPECT_FALSE(cover->isVisible());
}

}  // namespace
}  // namespace presentation
