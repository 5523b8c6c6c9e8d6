#include "preferences/PreferencesTest.h"

namespace preferences {
namespace {

using platform::cmdKey;
using platform::controlKey;
using platform::optionKey;
using platform::shiftKey;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr std::uint32_t kShiftCommand = Bits::Shift | Bits::Command;

class RecorderTest : public PreferencesTest {};

TEST_F(RecorderTest, TheNextPressWithAModifierBecomesTheShortcutOfItsRow) {
  const struct {
    std::uint32_t keyCode;
    std::uint32_t flags;
    const char* characters;
    const char* text;
    Array list;
    const char* label;
    Combination combination;
    const char* alsoPrinted = nullptr;
  } presses[] = {
      {40, Bits::Control | Bits::Option, "k", "k", {12, 13}, "⌃⌥k", {40, controlKey | optionKey}},
      {43, kShiftCommand, "<", ",", {14, 11}, "⇧⌘,", {43, shiftKey | cmdKey}, "CMD + ,"},
      {47, Bits::Shift, ">", ".", {14}, "⇧.", {47, shiftKey}},
      {15, Bits::Option, "r", "r", {13}, "⌥r", {15, optionKey}, "CMD + r"},
      {44, Bits::Command, "/", "/", {11}, "⌘/", {44, cmdKey}, "CMD + /"},
      {96, Bits::Option | Bits::Function, "\uF708", "f5", {13}, "⌥f5", {96, optionKey}},
      {111, Bits::Command, "\uF70F", "f12", {11}, "⌘f12", {111, cmdKey}},
      {18, Bits::Shift | Bits::CapsLock, "!", "!", {14}, "⇧!", {0, shiftKey}},
      {53, Bits::Option, "\033", "\033", {13}, "⌥\033", {0, optionKey}, "ESC"},
  };
  launchAndOpen();
  for (const ShortcutRow* row : {&toggleApp, &muteMic}) {
    bool byButton = false;
    for (const auto& press : presses) {
      SCOPED_TRACE(press.label);
      byButton = !byButton;
      byButton ? record(*row) : click(pane().*row->box);
      EXPECT_EQ(look(*row), kRecording);
      EXPECT_THAT(desk.keys.held(), IsEmpty());
      desk.output.lines.clear();
      desk.log.clear();
      pressKey(press.keyCode, press.flags, press.characters);
      EXPECT_EQ(look(*row), showing(press.label));
      EXPECT_EQ(stored(row->textKey), Value(press.text));
      EXPECT_EQ(stored(row->listKey), Value(press.list));
      EXPECT_THAT(desk.keys.held(), ElementsAre(press.combination));
      Lines printed{std::to_string(press.keyCode)};
      if (press.alsoPrinted != nullptr) printed.emplace_back(press.alsoPrinted);
      EXPECT_EQ(desk.output.lines, printed);
      EXPECT_THAT(desk.log.calls(), ElementsAre("defaults.set " + std::string(row->textKey),
                                                "defaults.set " + std::string(row->listKey),
                                                testing::StartsWith("hotKeys.register ")));
    }
    clear(*row);
  }
}

TEST_F(RecorderTest, ARecordedShortcutWorksAtOnceAndTheSecondPressIsNotRecorded) {
  launchAndOpen();
  record(toggleApp);
  pressControlK();
  pressKey(platform::kVK_ANSI_J, Bits::Control, "j");
  pressKey(platform::kVK_Escape, 0, "\033");
  EXPECT_EQ(look(toggleApp), showing("⌃k"));
  EXPECT_EQ(desk.output.lines, (Lines{"40", "38", "53"}));
  EXPECT_EQ(desk.screen.visibleWindowCount(), 0U) << "Escape closes it";
  desk.keys.press(kControlK);
  EXPECT_EQ(desk.tray.image(), "logo-active-small");
}

TEST_F(RecorderTest, PressesWithoutAModifierOrACharacterLeaveTheRowRecording) {
  launchAndOpen();
  record(muteMic);
  pressKey(platform::kVK_ANSI_K, 0, "k");
  pressKey(platform::kVK_Escape, 0, "\033");
  pressKey(platform::kVK_F5, Bits::Function, "\uF708");
  pressKey(platform::kVK_ANSI_K, Bits::CapsLock, "K");
  pressKey(platform::kVK_ANSI_Grave, Bits::Control, std::nullopt);
  EXPECT_EQ(look(muteMic), kRecording);
  EXPECT_EQ(desk.screen.visibleWindowCount(), 1U);
  EXPECT_EQ(desk.output.lines, (Lines{"40", "53", "ESC", "96", "40", "50"}));
  EXPECT_EQ(desk.log.calls(), Lines{});
  pressControlK();
  EXPECT_EQ(look(muteMic), showing("⌃k"));
}

TEST_F(RecorderTest, WhatBelongsToProgramsOrToNobodyIsRefusedAndTheRowKeepsRecording) {
  desk.keys.reserved = {{platform::kVK_ANSI_C, controlKey}, {platform::kVK_ANSI_A, controlKey}};
  const struct {
    std::uint32_t flags;
    std::vector<const char*> characters;
  } rows[] = {
      {Bits::Command | Bits::CapsLock,
       {"c", "v", "z", "f", ",", "h", "q", "n", "a", "x", "\r", "m", "-", "+", "<", "Q"}},
      // The last one names no key, and so stands for the key A.
      {Bits::Control, {"c", "C", "ö"}},
  };
  launchAndOpen();
  record(toggleApp);
  desk.log.clear();
  for (const auto& row : rows) {
    for (const char* characters : row.characters) {
      SCOPED_TRACE(characters);
      pressKey(8, row.flags, characters);
      ASSERT_EQ(desk.screen.alerts(),
                (std::vector{simulated::SimulatedWindows::ShownAlert{
                    "Please use a different key combination.", 1, {"OK"}, true}}));
      EXPECT_EQ(look(toggleApp), kRecording);
      EXPECT_TRUE(shortcutState().currentShortcutModifiers.isEmpty());
      dismissSheet();
      EXPECT_EQ(look(toggleApp), kRecording);
      EXPECT_THAT(desk.screen.alerts(), IsEmpty());
    }
  }
  EXPECT_EQ(desk.log.calls("defaults"), Lines{});
  EXPECT_EQ(desk.log.calls("hotKeys"), Lines{});
  for (const auto& [added, label] :
       {std::pair{Bits::Command, "⌃⌘c"}, std::pair{Bits::Shift, "⌃⇧c"}}) {
    pressKey(8, Bits::Control | added, "c");
    EXPECT_EQ(look(toggleApp), showing(label));
    record(toggleApp);
  }
}

TEST_F(RecorderTest, RecordingAnotherRowGivesTheFirstItsShortcutBack) {
  storeShortcut(toggleApp, "k", Array{12});
  storeShortcut(muteMic, "j", Array{12});
  launchAndOpen();
  record(toggleApp);
  EXPECT_THAT(desk.keys.held(), ElementsAre(kControlJ));
  desk.log.clear();
  record(muteMic);
  EXPECT_THAT(desk.log.calls(),
              ElementsAre("hotKeys.register 40 4096", "hotKeys.unregister 38 4096"));
  EXPECT_EQ(look(toggleApp), showing("⌃k"));
  EXPECT_EQ(look(muteMic), kRecording);
  pressKey(platform::kVK_ANSI_J, Bits::Control, "j");
  EXPECT_THAT(desk.keys.held(), UnorderedElementsAre(kControlK, kControlJ));
}

TEST_F(RecorderTest, ClosingTheWindowEndsARecordingWithoutANewShortcut) {
  storeShortcut(muteMic, "j", Array{12});
  launchAndOpen();
  record(muteMic);
  closePreferences();
  EXPECT_EQ(desk.screen.visibleWindowCount(), 0U);
  EXPECT_THAT(desk.keys.held(), ElementsAre(kControlJ));
  EXPECT_FALSE(shortcutState().isRecordingShortcut);
  openPreferences();
  EXPECT_EQ(look(muteMic), showing("⌃j"));
  pressControlK();
  EXPECT_EQ(stored(muteMic.textKey), Value("j"));
}

TEST_F(RecorderTest, ClearingARowLeavesNothingOfItsShortcut) {
  storeShortcut(toggleApp, "k", Array{12});
  storeShortcut(muteMic, "j", Array{12});
  launchAndOpen();
  clear(toggleApp);
  EXPECT_THAT(desk.log.calls(), ElementsAre("hotKeys.unregister 40 4096",
                                            "defaults.remove kuserdefault_ToggleAppShortcut",
                                            "defaults.remove kuserdefault_ToggleAppFlag"));
  EXPECT_EQ(look(toggleApp), kEmpty);
  EXPECT_EQ(look(muteMic), showing("⌃j"));
  relaunch();
  EXPECT_THAT(desk.keys.held(), ElementsAre(kControlJ));
  // Nor does it end the recording of the other one.
  openPreferences();
  record(toggleApp);
  clear(muteMic);
  EXPECT_EQ(look(toggleApp), kRecording);
  EXPECT_EQ(look(muteMic), kEmpty);
}

TEST_F(RecorderTest, ARowShowsTheModifiersThatAreStoredAndNothingWithoutThem) {
  store(toggleApp.textKey, "k");
  storeShortcut(muteMic, 7, Array{14, 14, 99, 13});
  launchAndOpen();
  EXPECT_EQ(look(toggleApp), kEmpty);
  EXPECT_EQ(look(muteMic), showing("⌥⇧"));
}

}  // namespace
}  // namespace preferences
