#include "preferences/preferencesWindowController.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "hotkeys/KeyCombo.h"
#include "platform/appkit/NSAlert.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/carbon/KeyCodes.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSUserDefaults.h"
#include "platform/foundation/Process.h"
#include "platform/foundation/Utf8.h"
#include "preferences/generalVc.h"

namespace preferences {

using hotkeys::Key;
using hotkeys::ModifierFlags;
using platform::NSEvent;
using platform::NSLocalizedString;
using platform::NSUserDefaults;
using Bits = platform::NSEventModifierFlags;

namespace {

/// What every program uses Command alone for.
constexpr std::array<std::string_view, 15> kReservedCommandKeys{
    "c", "v", "z", "f", ",", "h", "q", "n", "z", "a", "x", "\r", "m", "-", "+"};

/// What stands for the key in the settings and in the row. The characters may be those of Shift,
/// but a shifted comma and a shifted period stay what they are.
std::string keyText(std::uint16_t keyCode, std::string characters) {
  const std::optional<Key> key = hotkeys::keyFromCarbonKeyCode(keyCode);
  if (key && *key >= Key::F1 && *key <= Key::F12) {
    return "f" + std::to_string(static_cast<int>(*key) - static_cast<int>(Key::F1) + 1);
  }
  std::ranges::replace(characters, '<', ',');
  std::ranges::replace(characters, '>', '.');
  return characters;
}

bool isReserved(const std::string& text, std::uint32_t modifierFlags) {
  const hotkeys::KeyCombo combination(text, ModifierFlags{modifierFlags});
  if (platform::IsReservedHotKey(combination.carbonKeyCode, combination.carbonModifiers)) {
    return true;
  }
  if ((modifierFlags & Bits::OfShortcuts) != Bits::Command) return false;
  const std::string key = platform::lowercaseString(text);
  return std::ranges::find(kReservedCommandKeys, std::string_view(key)) !=
         kReservedCommandKeys.end();
}

/// Shows `text` in the row that records, if there is a pane.
void showInPane(const std::string& text) {
  if (const auto pane = shortcutState().currentGeneralVc) {
    pane->showShortcut(ShortcutRow::recording(), text);
  }
}

}  // namespace

void preferencesWindowController::windowDidLoad() {
  NSWindowController::windowDidLoad();
  if (const auto pane = std::dynamic_pointer_cast<generalVc>(contentViewController())) {
    pane->setHostProvider(host_);
  }
}

// --- Recording ---

void preferencesWindowController::keyDown(const NSEvent& event) {
  platform::print(std::to_string(event.keyCode));
  ShortcutState& state = shortcutState();
  if (!state.isRecordingShortcut) {
    NSWindowController::keyDown(event);
    return;
  }
  // It does not end a recording.
  if (event.keyCode == platform::kVK_Escape) platform::print("ESC");
  if ((event.modifierFlags & Bits::OfShortcuts) == 0 || !event.charactersIgnoringModifiers) return;
  state.currentShortcutKey = keyText(event.keyCode, *event.charactersIgnoringModifiers);
  if (isReserved(state.currentShortcutKey, event.modifierFlags))
    refuseReserved();
  else
    takeShortcut(event);
}

void preferencesWindowController::refuseReserved() {
  shortcutState().clearShortcut();
  showInPane("");
  askForAnother("", {});
}

void preferencesWindowController::takeShortcut(const NSEvent& event) {
  ShortcutState& state = shortcutState();
  const ShortcutRow& row = ShortcutRow::recording();
  state.currentShortcutModifiers = ModifierFlags{event.modifierFlags};
  NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
  defaults.setObject(state.currentShortcutKey, row.textKey);
  showInPane(state.shortcutText());
  const auto list = hotkeys::modifierListFromFlags(state.currentShortcutModifiers);
  defaults.setObject(platform::Array(list.begin(), list.end()), row.listKey);
  // A refusal empties the state.
  host_().registerHotKey(row);
  if (const auto pane = state.currentGeneralVc) pane->endRecording();
  const std::string& key = state.currentShortcutKey;
  if (key == "r" || key == "," || key == "/") platform::print("CMD + " + key);
}

// --- Refusals ---

void preferencesWindowController::showShortcutUnavailableAlert() {
  const std::string refused = shortcutState().shortcutText();
  auto askedAbout = askedAbout_.lock();
  if (!askedAbout) askedAbout_ = askedAbout = std::make_shared<std::set<std::string>>();
  askedAbout->insert(refused);
  shortcutState().clearShortcut();
  showInPane("");
  askForAnother(platform::NSLocalizedFormat("Not available: %s", refused),
                [askedAbout](int) { recordAfterRefusals(*askedAbout); });
}

void preferencesWindowController::recordAfterRefusals(const std::set<std::string>& refused) {
  ShortcutState& state = shortcutState();
  if (!state.currentGeneralVc) return state.clearShortcut();
  const ShortcutRow& row = ShortcutRow::recording();
  state.loadShortcut(row);
  // A recording that is still on tries the stored shortcut. With what was just refused that would
  // ask again, and so never end.
  if (refused.contains(state.shortcutText())) state.setRecording(false);
  state.currentGeneralVc->startRecording(row);
}

void preferencesWindowController::askForAnother(
    const std::string& informativeText, std::function<void(int response)> completionHandler) {
  platform::NSAlert alert;
  alert.setAlertStyle(platform::NSAlertStyle::Informational);
  alert.setMessageText(NSLocalizedString("Please use a different key combination."));
  alert.setInformativeText(informativeText);
  alert.addButtonWithTitle(NSLocalizedString("OK"));
  alert.beginSheetModalForWindow(*window(), std::move(completionHandler));
}

}  // namespace preferences
