#include "shared/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace presentation {
namespace {

using platform::NSPopoverBehavior;
using platform::Value;
using ShownAlert = simulated::SimulatedWindows::ShownAlert;

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

TEST_F(WallpaperGuardTest, WithoutAChosenWallpaperTheSwitchGoesBackInEitherState) {
  launch();
  clickAndAnswer();
  expectRefused(1);
  click(panel().toggleButtonPresentationMode);
  desk.log.clear();
  clickAndAnswer();
  expectRefused(2);
  EXPECT_EQ(desk.log.calls(),
            (std::vector<std::string>{"windows.showAlert " + kPleaseAdd.message}));
  EXPECT_TRUE(panel().toggleButtonPresentationMode.lock()->isOn());
}

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

TEST_F(WallpaperGuardTest, AnythingButATextIsNoChosenWallpaper) {
  for (const Value& value : {Value(true), Value(7), Value(platform::Array{"/pictures/sea.png"})}) {
    store(shared::kUserdefaultsSelectedWallpaper, value);
    relaunch();
    const int before = asked;
    clickAndAnswer();
    expectRefused(before + 1);
  }
}

TEST_F(WallpaperGuardTest, AChosenWallpaperOrTurningOffIsNotAsked) {
  store(shared::kUserdefaultsSelectedWallpaper, "");
  launch();
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
