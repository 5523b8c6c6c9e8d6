#include <gmock/gmock.h>

#include "presentation/FeatureTest.h"
#include "shared/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace presentation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Pictures = std::map<std::string, std::string>;
using ShownAlert = simulated::SimulatedWindows::ShownAlert;
using platform::Dictionary;
using platform::NSPopoverBehavior;
using platform::Value;

/// As it is, whatever a path may not have elsewhere.
const std::string kNew = "/My Pictures/100%20 caf\xc3\xa9 #1?.png";
const Pictures kOld{{"A", "/old/a.png"}, {"B", "/old/b.png"}};

class WallpaperSwapTest : public FeatureTest {
 protected:
  WallpaperSwapTest() {
    desk.displays.list = {{"B", {1280, 0, 1024, 600}, 1}, {"A", {0, 0, 1280, 720}, 2}};
    desk.pictures.pictures = kOld;
    choose(kNew);
  }
  void choose(const std::string& path) { store(shared::kUserdefaultsSelectedWallpaper, path); }
  void launchSwapping() { launchWith({shared::kUserdefaultsToggleWallpaper}); }
  /// The program runs, and the mode goes on.
  void swap() {
    launchSwapping();
    clickMaster();
  }
  /// What is remembered: "screen path".
  [[nodiscard]] Calls remembered() {
    Calls records;
    for (const auto& record : panel().oldWallpaperUrl()) {
      records.push_back(record.screen->id() + " " + record.url->path());
    }
    return records;
  }
};

TEST_F(WallpaperSwapTest, EveryScreenShowsTheChosenPictureAndGetsItsOwnBack) {
  std::map<std::string, Dictionary> options{{"A", {{"scaling", 3}, {"fill", "#102030"}}}};
  desk.pictures.pictureOptions = options;
  launchSwapping();
  EXPECT_THAT(remembered(), IsEmpty());
  EXPECT_EQ(callsOf([this] { clickMaster(); }, "pictures"),
            (Calls{"pictures.set B " + kNew, "pictures.set A " + kNew}));
  EXPECT_THAT(remembered(), ElementsAre("B /old/b.png", "A /old/a.png"));
  options["B"] = {};
  EXPECT_EQ(desk.pictures.pictureOptions, options);
  // The user changes them during the mode: each set takes those of its moment.
  options["B"] = desk.pictures.pictureOptions["B"] = {{"clipping", true}};
  EXPECT_EQ(callsOf([this] { clickMaster(); }, "pictures"),
            (Calls{"pictures.set B /old/b.png", "pictures.set A /old/a.png"}));
  EXPECT_EQ(desk.pictures.pictureOptions, options);
  EXPECT_THAT(remembered(), IsEmpty());
  panel().restoreOldWallpapers();
  EXPECT_EQ(desk.pictures.pictures, kOld);
  EXPECT_THAT(desk.output.lines, IsEmpty());
}

TEST_F(WallpaperSwapTest, WithoutAChosenPictureTheSameOnesAreSetAgain) {
  store(shared::kUserdefaultsToggleWallpaper, true);
  for (const platform::Value& stored :
       {platform::Value(7), platform::Value(platform::Array{kNew})}) {
    store(shared::kUserdefaultsSelectedWallpaper, stored);
    relaunch();
    EXPECT_THAT(callsOf([this] { panel().togglePresentationMode(); }, "pictures"), IsEmpty());
    EXPECT_THAT(remembered(), ElementsAre("B /old/b.png", "A /old/a.png"));
    EXPECT_EQ(callsOf([this] { panel().togglePresentationMode(); }, "pictures"),
              (Calls{"pictures.set B /old/b.png", "pictures.set A /old/a.png"}));
  }
}

TEST_F(WallpaperSwapTest, ARefusalIsOneLineAndTheOthersGoOn) {
  desk.pictures.refusals["B"] = "The picture cannot be read.";
  launchSwapping();
  EXPECT_THAT(entriesOf([this] { clickMaster(); }),
              ElementsAre("statusItem.setImage logo-active-small", "pictures.set B " + kNew,
                          "print The picture cannot be read.", "pictures.set A " + kNew));
  EXPECT_EQ(desk.pictures.pictures, (Pictures{{"A", kNew}, {"B", "/old/b.png"}}));
  desk.pictures.refusals = {{"B", "No such screen."}};
  clickMaster();
  EXPECT_THAT(desk.output.lines, ElementsAre("The picture cannot be read.", "No such screen."));
  EXPECT_EQ(desk.pictures.pictures, kOld);
  EXPECT_THAT(remembered(), IsEmpty());
  EXPECT_TRUE(panel().toggleButtonChangeWallpaper.lock()->isOn());
}

TEST_F(WallpaperSwapTest, TheRecordsNameTheScreensOfTheirMomentThatHadAPicture) {
  desk.displays.list.push_back({"D", {0, 0, 800, 600}, 1});
  swap();
  desk.displays.list = {{"C", {0, 0, 800, 600}, 1}, {"A", {800, 0, 1280, 720}, 1}};
  desk.pictures.pictures["C"] = "/old/c.png";
  EXPECT_EQ(callsOf([this] { clickMaster(); }, "pictures"),
            (Calls{"pictures.set B /old/b.png", "pictures.set A /old/a.png"}));
  EXPECT_EQ(desk.pictures.pictures["D"], kNew);
}

TEST_F(WallpaperSwapTest, ASecondSwapForgetsTheFirst) {
  swap();
  choose("/newer.png");
  post(55, true);
  EXPECT_THAT(remembered(), ElementsAre("B " + kNew, "A " + kNew));
  clickMaster();
  EXPECT_EQ(desk.pictures.pictures, (Pictures{{"A", kNew}, {"B", kNew}}));
}

const ShownAlert kPleaseAdd{"Please add a wallpaper in settings.", 0, {"OK"}};

class WallpaperGuardTest : public tests::ApplicationTest {
 protected:
  /// Clicks the wallpaper switch; the user answers the alert once `whileAsked` has looked around.
  void clickAndAnswer(const std::function<void()>& whileAsked = {}) {
    desk.loop.whenWaiting([this, whileAsked] {
      ++asked;
      EXPECT_EQ(desk.screen.alerts(), std::vector{kPleaseAdd});
      if (whileAsked) whileAsked();
      desk.screen.answerAlert(0);
    });
    click(panel().toggleButtonChangeWallpaper);
  }

  void expectRefused(int times) {
    EXPECT_EQ(asked, times);
    EXPECT_FALSE(panel().toggleButtonChangeWallpaper.lock()->isOn());
    EXPECT_EQ(delegate().popover()->behavior(), NSPopoverBehavior::Transient);
    EXPECT_TRUE(desk.screen.alerts().empty());
    EXPECT_FALSE(desk.settings.object(shared::kUserdefaultsToggleWallpaper));
  }

  int asked = 0;
};

TEST_F(WallpaperGuardTest, ThePanelStaysOpenUnderTheAlertAndClosesAfterwards) {
  launch();
  clickAndAnswer([this] {
    EXPECT_EQ(delegate().popover()->behavior(), NSPopoverBehavior::ApplicationDefined);
    EXPECT_TRUE(panel().toggleButtonChangeWallpaper.lock()->isOn());
    desk.screen.actElsewhere();
    EXPECT_TRUE(delegate().popover()->isShown());
  });
  desk.screen.actElsewhere();
  EXPECT_FALSE(delegate().popover()->isShown());
}

TEST_F(WallpaperGuardTest, OnlyATextIsAChosenWallpaperAndTurningOffIsNotAsked) {
  launch();
  clickAndAnswer();
  expectRefused(1);
  store(shared::kUserdefaultsSelectedWallpaper, Value(platform::Array{"/pictures/sea.png"}));
  click(panel().toggleButtonPresentationMode);
  desk.log.clear();
  clickAndAnswer();
  expectRefused(2);
  EXPECT_EQ(desk.log.calls(), Calls{"windows.showAlert " + kPleaseAdd.message});
  EXPECT_TRUE(panel().toggleButtonPresentationMode.lock()->isOn());
  store(shared::kUserdefaultsSelectedWallpaper, "");
  click(panel().toggleButtonChangeWallpaper);
  EXPECT_EQ(desk.settings.object(shared::kUserdefaultsToggleWallpaper), Value(true));
  desk.settings.values.erase(desk.settings.values.find(shared::kUserdefaultsSelectedWallpaper));
  click(panel().toggleButtonChangeWallpaper);
  EXPECT_EQ(desk.settings.object(shared::kUserdefaultsToggleWallpaper), Value(false));
}

TEST_F(WallpaperGuardTest, AnEndOfTheProgramUnderTheAlertLeavesNothing) {
  launch();
  desk.loop.whenWaiting([this] { desk.loop.terminate(); });
  click(panel().toggleButtonChangeWallpaper);
  EXPECT_TRUE(desk.screen.alerts().empty());
}

}  // namespace
}  // namespace presentation
