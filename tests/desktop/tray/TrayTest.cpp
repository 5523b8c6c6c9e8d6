#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/tray/TrayDesk.h"

using harness::Button;
using harness::Panel;
using harness::Stream;
using testing::HasSubstr;
using testing::Not;

namespace {

class TrayTest : public testing::TestWithParam<Panel> {};

INSTANTIATE_TEST_SUITE_P(EachPanel, TrayTest,
                         testing::Values(Panel::XfcePanel, Panel::Tint2, Panel::LxqtPanel),
                         testing::PrintToStringParamName());

TEST_P(TrayTest, ClicksAreReportedAndTheIconChanges) {
  TrayDesk tray(GetParam());
  tray.startProbe();
  ASSERT_TRUE(tray.says("tray: yes"));
  const auto square = tray.icon();
  ASSERT_TRUE(square);

  tray.click(Button::Left);
  ASSERT_TRUE(tray.says("left"));
  const auto anchor = tray.probe().waitForLine("^anchor ");
  ASSERT_TRUE(anchor);
  EXPECT_THAT(*anchor, HasSubstr("anchor " + std::to_string(square->centreX()) + "," +
                                 std::to_string(square->centreY()) + " panel "));
  EXPECT_TRUE(tray.icon(TrayDesk::kDisc));

  tray.click(Button::Middle);
  tray.click(Button::WheelUp);
  // Of two clicks within a few milliseconds, which no hand does, a panel calls us for one only.
  for (int click = 0; click < 2; ++click) {
    tray.click(Button::Left);
    ASSERT_TRUE(tray.says("left"));
  }
  EXPECT_TRUE(tray.icon(TrayDesk::kDisc));
  EXPECT_EQ(tray.reports(), "left left left");
}

TEST_P(TrayTest, TheVeryFirstRightClickOpensTheWholeMenu) {
  TrayDesk tray(GetParam());
  tray.startProbe();
  ASSERT_TRUE(tray.icon());
  ASSERT_TRUE(tray.openMenu());
  ASSERT_TRUE(tray.says("menu attached"));
  for (const char* key : {"Up", "Return"}) tray.desk().input().key(key);
  ASSERT_TRUE(tray.says("closed"));
  EXPECT_EQ(tray.reports(), "right chosen 2 closed");
}

TEST_P(TrayTest, EscapeEndsTheMenuBeforeTheNextClickIsReported) {
  TrayDesk tray(GetParam());
  tray.startProbe();
  ASSERT_TRUE(tray.icon());
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(tray.openMenu());
    ASSERT_TRUE(tray.escapeMenu());
  }
  tray.click(Button::Left);
  ASSERT_TRUE(tray.says("left"));
  EXPECT_EQ(tray.reports(), "right closed right closed left");
}

TEST_P(TrayTest, AMenuThatComesLateIsOpenedAndClosedInOrder) {
  TrayDesk tray(GetParam());
  tray.startProbe({"--late-menu"});
  ASSERT_TRUE(tray.icon());
  ASSERT_TRUE(tray.openMenu());
  ASSERT_TRUE(tray.says("menu attached"));
  [[maybe_unused]] const auto drawn = tray.desk().screen().settled(
      tray.desk().x().screenArea(), std::chrono::milliseconds(200), harness::kPatience);
  for (const char* key : {"Up", "Return"}) tray.desk().input().key(key);
  ASSERT_TRUE(tray.says("closed"));
  EXPECT_EQ(tray.reports(), "right chosen 2 closed");
}

TEST_P(TrayTest, APanelThatComesLateDiesAndRestartsShowsTheIconEachTime) {
  TrayDesk tray(GetParam());
  tray.desk().stopPanel();
  tray.startProbe();
  ASSERT_TRUE(tray.probe().waitForLine("no tray is running", harness::kPatience, Stream::Error));
  for (int round = 1; round <= 2; ++round) {
    tray.startPanel();
    ASSERT_TRUE(tray.says("tray: yes"));
    ASSERT_TRUE(round == 1 ? tray.icon() : tray.icon(TrayDesk::kDisc));
    tray.click(Button::Left);
    ASSERT_TRUE(tray.says("left"));
    tray.desk().panel().kill();
    ASSERT_TRUE(tray.says("tray: no"));
  }
  EXPECT_EQ(tray.probe().errorOutput().find("tray"),
            tray.probe().errorOutput().rfind("calmdeck.tray") + 9)
      << "said more than once:\n"
      << tray.probe().errorOutput();
}

TEST_P(TrayTest, AHungPanelKeepsNobodyWaitingAndShowsTheIconOnceItGoesOn) {
  TrayDesk tray(GetParam());
  tray.desk().panel().freezeGroup();
  tray.startProbe({"--anchor"});
  ASSERT_TRUE(tray.probe().waitForLine("does not answer", harness::kPatience, Stream::Error));
  EXPECT_TRUE(tray.probe().waitForLine("^anchor ")) << "its loop does not turn";
  EXPECT_THAT(tray.probe().output(), Not(HasSubstr("tray: yes")));
  tray.desk().panel().thawGroup();
  ASSERT_TRUE(tray.says("tray: yes"));
  ASSERT_TRUE(tray.icon());
  tray.click(Button::Left);
  EXPECT_TRUE(tray.says("left"));
}

TEST_P(TrayTest, BeforeAnyClickTheAnchorLiesOnThePanel) {
  TrayDesk tray(GetParam());
  tray.startProbe({"--anchor"});
  const auto anchor = tray.probe().waitForLine("^anchor .* panel 0,6");
  ASSERT_TRUE(anchor) << tray.probe().output();
  const auto icon = tray.icon();
  ASSERT_TRUE(icon);
  EXPECT_NEAR(std::stoi(anchor->substr(sizeof("anchor"))), icon->centreX(), icon->width) << *anchor;
}

TEST(TraySwitchTest, TheIconMovesFromEachProtocolToTheOther) {
  TrayDesk tray(Panel::Tint2);
  tray.startProbe();
  for (const Panel next : {Panel::XfcePanel, Panel::Tint2}) {
    ASSERT_TRUE(tray.says("tray: yes"));
    tray.desk().stopPanel();
    ASSERT_TRUE(tray.says("tray: no"));
    tray.desk().startPanel(next);
  }
  ASSERT_TRUE(tray.says("tray: yes"));
  ASSERT_TRUE(tray.icon());
  tray.click(Button::Left);
  EXPECT_TRUE(tray.says("left"));
}

TEST(TraySwitchTest, WithoutASessionBusTheOldProtocolServes) {
  TrayDesk tray(Panel::Tint2, false);
  tray.startProbe();
  ASSERT_TRUE(tray.says("tray: yes"));
  ASSERT_TRUE(tray.icon());
  ASSERT_TRUE(tray.openMenu());
  for (const char* key : {"Up", "Return"}) tray.desk().input().key(key);
  ASSERT_TRUE(tray.says("closed"));
  EXPECT_EQ(tray.reports(), "right chosen 2 closed");
}

}  // namespace
