#include "platform/carbon/CarbonEvents.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSUserDefaults.h"
#include "preferences/generalVc.h"

namespace preferences {

using platform::NSColor;
using platform::NSLocalizedString;
using platform::NSUserDefaults;

namespace {

std::string noShortcut() {
  return NSLocalizedString("Record Shortcut");
}

}  // namespace

// --- A row on the screen ---

void generalVc::showShortcut(const ShortcutRow& row, const std::string& text) const {
  connected(row.label).setStringValue(text);
  const bool isRecording = &row == &ShortcutRow::recording();
  describe(row, isRecording && shortcutState().isRecordingShortcut);
}

void generalVc::showClearButton(const ShortcutRow& row, bool shown) const {
  connected(row.clearButton).setHidden(!shown);
}

void generalVc::showRecording(const ShortcutRow& row, bool records) const {
  connected(row.box).setBorderColor(records ? NSColor::blueColor() : borderNormalColor);
  describe(row, records);
}

void generalVc::describe(const ShortcutRow& row, bool records) const {
  const std::string& shown = connected(row.label).stringValue();
  const bool isEmpty = shown.empty() || shown == noShortcut();
  const std::string idle = isEmpty ? NSLocalizedString("No shortcut") : shown;
  const std::string help = records ? NSLocalizedString("Waits for the keys to be pressed") : idle;
  connected(row.box).setAccessibilityHelp(help);
  connected(row.recordButton).setAccessibilityHelp(help);
}

// --- Showing what is stored ---

std::string generalVc::assignedKeys(const ShortcutRow& row) const {
  const auto& hotKey = host_().hotKey(row);
  return hotKey ? hotKey->assignedKeys : "";
}

void generalVc::reload(const ShortcutRow& row) const {
  ShortcutState& state = shortcutState();
  state.loadShortcut(row);
  const bool hasShortcut = !state.currentShortcutModifiers.isEmpty();
  const std::string assigned = assignedKeys(row);
  const std::string shortcut = assigned.empty() ? state.shortcutText() : assigned;
  showShortcut(row, hasShortcut ? shortcut : noShortcut());
  showClearButton(row, hasShortcut);
  showRecording(row, false);
  showWhoBindsKeys();
}

void generalVc::showWhoBindsKeys() const {
  std::string lines;
  bool isAssigned = false;
  for (const ShortcutRow* row : {&ShortcutRow::toggleApp, &ShortcutRow::muteMic}) {
    ShortcutState stored;
    stored.loadShortcut(*row);
    isAssigned = isAssigned || !assignedKeys(*row).empty();
    if (stored.currentShortcutModifiers.isEmpty()) continue;
    const hotkeys::KeyCombo keys(stored.currentShortcutKey, stored.currentShortcutModifiers);
    const auto line =
        platform::OwnHotKeyBinding(keys.carbonKeyCode, keys.carbonModifiers, row->action);
    if (line) lines.append(lines.empty() ? "" : "\n").append(*line);
  }
  connected(&generalVc::lblOwnKeyBindings).setStringValue(lines);
  connected(&generalVc::lblOwnKeyBindings).setHidden(lines.empty());
  connected(&generalVc::lblOwnKeyBindingsNote).setHidden(lines.empty());
  connected(&generalVc::lblAssignedKeysNote).setHidden(!isAssigned);
}

// --- Recording ---

void generalVc::startRecording(const ShortcutRow& row) {
  resetCurrentRecording();
  ShortcutState& state = shortcutState();
  state.recordingMuteMic = row.isMuteMic;
  state.setRecording(true);
  showShortcut(row, "");
  showClearButton(row, false);
  showRecording(row, true);
  host_().unregisterHotKey(row);
  state.clearShortcut();
}

void generalVc::resetCurrentRecording() {
  if (!shortcutState().isRecordingShortcut) return;
  const ShortcutRow& row = ShortcutRow::recording();
  reload(row);
  if (!shortcutState().currentShortcutModifiers.isEmpty()) host_().registerHotKey(row);
}

void generalVc::endRecording() {
  shortcutState().setRecording(false);
  showRecording(ShortcutRow::recording(), false);
  showClearButton(ShortcutRow::recording(), true);
  showWhoBindsKeys();
}

// --- Clearing ---

// Whether a row records stays as it is, also when it is this one.
void generalVc::clear(const ShortcutRow& row) const {
  shortcutState().clearShortcut();
  host_().unregisterHotKey(row);
  NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
  defaults.removeObjectForKey(row.textKey);
  defaults.removeObjectForKey(row.listKey);
  showShortcut(row, noShortcut());
  showClearButton(row, false);
  showRecording(row, false);
  showWhoBindsKeys();
}

}  // namespace preferences
