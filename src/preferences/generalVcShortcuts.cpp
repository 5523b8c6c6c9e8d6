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
}

void generalVc::showClearButton(const ShortcutRow& row, bool shown) const {
  connected(row.clearButton).setHidden(!shown);
}

void generalVc::showRecording(const ShortcutRow& row, bool records) const {
  const std::string& shown = connected(row.label).stringValue();
  const std::string idle = shown == noShortcut() ? NSLocalizedString("No shortcut") : shown;
  const std::string help = records ? NSLocalizedString("Waits for the keys to be pressed") : idle;
  connected(row.box).setBorderColor(records ? NSColor::blueColor() : borderNormalColor);
  connected(row.box).setAccessibilityHelp(help);
  connected(row.recordButton).setAccessibilityHelp(help);
}

// --- Showing what is stored ---

void generalVc::reload(const ShortcutRow& row) const {
  ShortcutState& state = shortcutState();
  state.loadShortcut(row);
  const bool hasShortcut = !state.currentShortcutModifiers.isEmpty();
  const auto& hotKey = host_().hotKey(row);
  const bool isAssigned = hotKey && !hotKey->assignedKeys.empty();
  const std::string shortcut = isAssigned ? hotKey->assignedKeys : state.shortcutText();
  showShortcut(row, hasShortcut ? shortcut : noShortcut());
  showClearButton(row, hasShortcut);
  showRecording(row, false);
  showOwnKeyBindings();
}

void generalVc::showOwnKeyBindings() const {
  std::string lines;
  for (const ShortcutRow* row : {&ShortcutRow::toggleApp, &ShortcutRow::muteMic}) {
    ShortcutState stored;
    stored.loadShortcut(*row);
    if (stored.currentShortcutModifiers.isEmpty()) continue;
    const hotkeys::KeyCombo keys(stored.currentShortcutKey, stored.currentShortcutModifiers);
    const auto line =
        platform::OwnHotKeyBinding(keys.carbonKeyCode, keys.carbonModifiers, row->action);
    if (line) lines.append(lines.empty() ? "" : "\n").append(*line);
  }
  connected(&generalVc::lblOwnKeyBindings).setStringValue(lines);
  connected(&generalVc::lblOwnKeyBindings).setHidden(lines.empty());
  connected(&generalVc::lblOwnKeyBindingsNote).setHidden(lines.empty());
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
  showOwnKeyBindings();
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
  showOwnKeyBindings();
}

}  // namespace preferences
