#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>

#include "platform/carbon/KeyCodes.h"
#include "preferences/ShortcutState.h"
#include "preferences/generalVc.h"
#include "shared/SettingsKeys.h"
#include "support/ApplicationTest.h"

namespace preferences {

using platform::Array;
using platform::Value;
using Bits = platform::NSEventModifierFlags;
using Combination = simulated::SimulatedHotKeys::Combination;
using Lines = std::vector<std::string>;

constexpr Combination kControlK{platform::kVK_ANSI_K, platform::controlKey};
constexpr Combination kControlJ{platform::kVK_ANSI_J, platform::controlKey};

/// What a row of the pane looks like.
struct Look {
  std::string label;
  bool hasClear = false;
  bool isBlue = false;
  bool operator==(const Look&) const = default;
};
inline void PrintTo(const Look& look, std::ostream* out) {
  *out << '"' << look.label << '"' << (look.hasClear ? " clear" : "")
       << (look.isBlue ? " blue" : "");
}
inline const Look kEmpty{"Record Shortcut", false, false};
inline const Look kRecording{"", false, true};

/// The program with its preferences, as the user sees and handles them.
class PreferencesTest : public tests::ApplicationTest {
 protected:
  void openPreferences() {
    desk.tray.rightClick();
    desk.tray.choose("Preferences");
    desk.loop.settle();
    desk.output.lines.clear();
    desk.log.clear();
  }
  void launchAndOpen() {
    launch();
    openPreferences();
  }
  void closePreferences() {
    desk.screen.escape();
    desk.loop.settle();
  }
  void pressKey(std::uint32_t keyCode, std::uint32_t flags, std::optional<std::string> characters) {
    desk.screen.pressKey({.type = platform::NSEventType::KeyDown,
                          .locationInWindow = {},
                          .keyCode = static_cast<std::uint16_t>(keyCode),
                          .modifierFlags = flags,
                          .charactersIgnoringModifiers = std::move(characters)});
    desk.loop.settle();
  }
  void pressControlK() { pressKey(platform::kVK_ANSI_K, Bits::Control, "k"); }
  void dismissSheet() {
    desk.screen.answerAlert(0);
    desk.loop.settle();
  }
  void storeShortcut(const ShortcutRow& row, Value text, Value list) {
    store(row.textKey, std::move(text));
    store(row.listKey, std::move(list));
  }
  [[nodiscard]] std::optional<Value> stored(std::string_view key) {
    return desk.settings.object(key);
  }

  [[nodiscard]] static generalVc& pane() { return *shortcutState().currentGeneralVc; }
  void record(const ShortcutRow& row) {
    click(row.isMuteMic ? pane().btnRecordShortcutMuteMic : pane().btnRecordShortcutToggleApp);
  }
  void clear(const ShortcutRow& row) { click(pane().*row.clearButton); }

  /// A screen reader is told the same, and the desktop keeps its keys unless a row records.
  [[nodiscard]] Look look(const ShortcutRow& row) {
    const auto box = (pane().*row.box).lock();
    const bool isBlue = box->borderColor() == platform::NSColor::blueColor();
    EXPECT_TRUE(isBlue || box->borderColor() == pane().borderNormalColor);
    const std::string& label = (pane().*row.label).lock()->stringValue();
    const bool isEmpty = label.empty() || label == kEmpty.label;
    const std::string idle = isEmpty ? "No shortcut" : label;
    EXPECT_EQ(box->accessibilityHelp(), isBlue ? "Waits for the keys to be pressed" : idle);
    const auto recordButton = (pane().*row.recordButton).lock();
    const auto clearButton = (pane().*row.clearButton).lock();
    EXPECT_EQ(recordButton->accessibilityHelp(), box->accessibilityHelp());
    const std::string name = row.isMuteMic ? "the microphone" : "presentation mode";
    EXPECT_EQ(box->accessibilityLabel(), "Shortcut for " + name);
    EXPECT_EQ(recordButton->accessibilityLabel(), "Record the shortcut for " + name);
    EXPECT_EQ(clearButton->accessibilityLabel(), "Clear the shortcut for " + name);
    EXPECT_EQ((pane().*row.label).lock()->superview(), box.get());
    EXPECT_EQ(desk.screen.desktopKeysEnabled(), !shortcutState().isRecordingShortcut);
    return {label, !clearButton->isHidden(), isBlue};
  }
  /// The label of a row that has a shortcut and does not record.
  [[nodiscard]] static Look showing(std::string label) { return {std::move(label), true, false}; }

  const ShortcutRow& toggleApp = ShortcutRow::toggleApp;
  const ShortcutRow& muteMic = ShortcutRow::muteMic;
};

}  // namespace preferences
