#include "preferences/PreferencesTest.h"

namespace preferences {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Another program holds Control-K.
class RefusedShortcutTest : public PreferencesTest {
 protected:
  RefusedShortcutTest() { desk.keys.heldByOthers.insert(kControlK); }
  void recordARefusedOne(const ShortcutRow& row) {
    record(row);
    pressControlK();
    ASSERT_EQ(desk.screen.alerts().size(), 1U);
  }
  [[nodiscard]] std::size_t sheets() const { return desk.screen.alerts().size(); }
};

TEST_F(RefusedShortcutTest, AfterItsSheetTheSameRowRecordsAgain) {
  launchAndOpen();
  for (const ShortcutRow* row : {&toggleApp, &muteMic}) {
    desk.output.lines.clear();
    recordARefusedOne(*row);
    EXPECT_EQ(desk.screen.alerts()[0].message, "Please use a different key combination.");
    // The sheet is not waited for: the row has left its recording meanwhile.
    EXPECT_EQ(look(*row), showing(""));
    EXPECT_FALSE(shortcutState().isRecordingShortcut);
    EXPECT_EQ(stored(row->textKey), Value("k"));
    EXPECT_EQ(stored(row->listKey), Value(Array{12}));
    dismissSheet();
    EXPECT_EQ(look(*row), kRecording);
    EXPECT_THAT(desk.keys.held(), IsEmpty());
    pressKey(platform::kVK_ANSI_J, Bits::Control, "j");
    EXPECT_EQ(look(*row), showing("⌃j"));
    EXPECT_THAT(desk.keys.held(), ElementsAre(kControlJ));
    EXPECT_EQ(desk.output.lines, (Lines{"40", "38"}));
    clear(*row);
  }
}

TEST_F(RefusedShortcutTest, ARowThatRecordsIsStartedAnewWhenTheRefusalWasOfAnother) {
  storeShortcut(toggleApp, "j", Array{12});
  storeShortcut(muteMic, "k", Array{12});
  launch();
  dismissSheet();
  record(muteMic);
  record(toggleApp);
  ASSERT_EQ(sheets(), 1U);
  desk.log.clear();
  dismissSheet();
  EXPECT_EQ(look(toggleApp), kRecording);
  EXPECT_THAT(desk.log.calls("hotKeys"),
              ElementsAre("hotKeys.register 38 4096", "hotKeys.unregister 38 4096"));

  // Taken meanwhile: that is told as well, and once.
  record(muteMic);
  record(toggleApp);
  desk.keys.heldByOthers.insert(kControlJ);
  dismissSheet();
  ASSERT_EQ(sheets(), 1U);
  EXPECT_EQ(desk.screen.alerts()[0].informative, "Not available: ⌃j");
  dismissSheet();
  EXPECT_EQ(sheets(), 0U);
  EXPECT_EQ(look(toggleApp), kRecording);
}

TEST_F(RefusedShortcutTest, AWindowThatClosesKeepsItsSheetForTheNextTime) {
  launchAndOpen();
  recordARefusedOne(toggleApp);
  closePreferences();
  EXPECT_TRUE(app::sharedPreferencesWindowController()->window()->isVisible());
  dismissSheet();
  closePreferences();
  EXPECT_EQ(desk.screen.visibleWindowCount(), 0U);
  EXPECT_EQ(sheets(), 0U);
  openPreferences();
  EXPECT_EQ(sheets(), 1U);
  EXPECT_EQ(look(toggleApp), showing("⌃k"));
  dismissSheet();
  EXPECT_EQ(look(toggleApp), kRecording);
  pressKey(platform::kVK_ANSI_J, Bits::Control, "j");
  closePreferences();
  openPreferences();
  EXPECT_EQ(sheets(), 0U);
  EXPECT_EQ(look(toggleApp), showing("⌃j"));
}

TEST_F(RefusedShortcutTest, TwoRefusedAtLaunchAskOneAfterTheOtherAndTheModesRowRecords) {
  desk.keys.heldByOthers.insert(kControlJ);
  storeShortcut(toggleApp, "k", Array{12});
  storeShortcut(muteMic, "j", Array{12});
  launch();
  EXPECT_EQ(look(toggleApp), (Look{"", true, false}));
  EXPECT_EQ(look(muteMic), showing("⌃j"));
  for (const char* named : {"Not available: ⌃k", "Not available: ⌃j"}) {
    ASSERT_EQ(sheets(), 1U);
    EXPECT_EQ(desk.screen.alerts()[0].informative, named);
    dismissSheet();
    EXPECT_EQ(look(toggleApp), kRecording);
  }
  EXPECT_EQ(sheets(), 0U);
  EXPECT_EQ(stored(toggleApp.textKey), Value("k"));
  EXPECT_EQ(stored(muteMic.textKey), Value("j"));
}

TEST_F(RefusedShortcutTest, TheProgramCanEndUnderItsSheets) {
  storeShortcut(toggleApp, "k", Array{12});
  storeShortcut(muteMic, "k", Array{12});
  launch();
  EXPECT_EQ(sheets(), 1U);
  desk.screen.answerAlert(0);
  desk.loop.terminate();
}

/// The desktop assigns the keys itself, when it has asked the user.
class AssignedShortcutTest : public PreferencesTest {
 protected:
  AssignedShortcutTest() { desk.keys.assignsKeys = true; }
  void refuse(Combination asked) {
    desk.keys.refuse(asked);
    desk.loop.settle();
  }
  /// Whether it says where the keys can be changed.
  [[nodiscard]] static bool namesSettings() {
    return !pane().lblAssignedKeysNote.lock()->isHidden();
  }
};

TEST_F(AssignedShortcutTest, TheRowNamesTheKeysThatTheDesktopGave) {
  launchAndOpen();
  record(muteMic);
  pressControlK();
  EXPECT_EQ(look(muteMic), showing("⌃k"));
  record(toggleApp);
  EXPECT_FALSE(namesSettings());
  desk.keys.assign(kControlK, kControlJ, "Ctrl+J");
  EXPECT_TRUE(namesSettings());
  EXPECT_EQ(look(muteMic), showing("Ctrl+J"));
  EXPECT_EQ(look(toggleApp), kRecording);
  EXPECT_TRUE(shortcutState().isRecordingShortcut);
  pressKey(platform::kVK_ANSI_J, Bits::Option, "j");
  desk.keys.assign({platform::kVK_ANSI_J, platform::optionKey}, kControlK, "Ctrl+K");
  closePreferences();
  openPreferences();
  EXPECT_EQ(look(toggleApp), showing("Ctrl+K"));
  EXPECT_EQ(look(muteMic), showing("Ctrl+J"));
  desk.keys.press(kControlK);
  EXPECT_THAT(desk.output.lines, ElementsAre(::testing::StartsWith("Pressed at ")));

  // The user gives it others, in the desktop's own settings.
  desk.keys.assign(kControlK, kControlK, "Super+K");
  EXPECT_EQ(look(muteMic), showing("Super+K"));
  clear(muteMic);
  EXPECT_EQ(look(muteMic), kEmpty);
  EXPECT_TRUE(namesSettings());
  clear(toggleApp);
  EXPECT_FALSE(namesSettings());
}

TEST_F(AssignedShortcutTest, ARefusalThatComesLaterAsksForOtherKeysAsOneAtOnce) {
  storeShortcut(toggleApp, "k", Array{12});
  storeShortcut(muteMic, "j", Array{12});
  launch();
  EXPECT_THAT(desk.screen.alerts(), IsEmpty());
  EXPECT_THAT(desk.keys.purposes,
              ElementsAre(testing::Pair(kControlJ, "Microphone On or Off"),
                          testing::Pair(kControlK, "Presentation Mode On or Off")));
  refuse(kControlK);
  ASSERT_EQ(desk.screen.alerts().size(), 1U);
  EXPECT_EQ(desk.screen.alerts()[0].informative, "Not available: ⌃k");
  dismissSheet();
  EXPECT_EQ(look(toggleApp), kRecording);
  pressControlK();
  EXPECT_EQ(look(toggleApp), showing("⌃k"));
  refuse(kControlK);
  EXPECT_EQ(look(toggleApp), (Look{"", true, false}));
  dismissSheet();
  EXPECT_EQ(look(toggleApp), kRecording);
  EXPECT_THAT(desk.screen.alerts(), IsEmpty());
  desk.keys.assign(kControlJ, kControlJ, "Ctrl+J");
  EXPECT_EQ(look(muteMic), showing("Ctrl+J"));
}

}  // namespace
}  // namespace preferences
