#include "preferences/ShortcutState.h"

#include "platform/Runtime.h"
#include "platform/carbon/CarbonEvents.h"
#include "platform/foundation/NSUserDefaults.h"
#include "preferences/generalVc.h"
#include "shared/SettingsKeys.h"

namespace preferences {

using platform::NSUserDefaults;

const ShortcutRow ShortcutRow::toggleApp{
    .box = &generalVc::boxShortcutToggleApp,
    .label = &generalVc::lblShortcutToggleApp,
    .recordButton = &generalVc::btnRecordShortcutToggleApp,
    .clearButton = &generalVc::btnClearShortcut_ToggleApp,
    .textKey = shared::kuserdefault_ToggleAppShortcut,
    .listKey = shared::kuserdefault_ToggleAppFlag,
    .action = "toggle-presentation-mode",
    .isMuteMic = false,
};

const ShortcutRow ShortcutRow::muteMic{
    .box = &generalVc::boxShortcutMuteMic,
    .label = &generalVc::lblShortcutMuteMic,
    .recordButton = &generalVc::btnRecordShortcutMuteMic,
    .clearButton = &generalVc::btnClearShortcut_MuteMic,
    .textKey = shared::kuserdefault_MuteMicShortcut,
    .listKey = shared::kuserdefault_MuteMicFlag,
    .action = "toggle-microphone",
    .isMuteMic = true,
};

const ShortcutRow& ShortcutRow::recording() {
  return shortcutState().recordingMuteMic ? muteMic : toggleApp;
}

namespace {

/// The list that `stored` is, if it is an Array of nothing but integers.
std::optional<hotkeys::ModifierList> listOf(const std::optional<platform::Value>& stored) {
  const auto array = stored ? stored->as<platform::Array>() : std::nullopt;
  if (!array) return std::nullopt;
  hotkeys::ModifierList list;
  for (const platform::Value& element : *array) {
    const auto number = element.as<std::int64_t>();
    if (!number) return std::nullopt;
    list.push_back(*number);
  }
  return list;
}

}  // namespace

void ShortcutState::setRecording(bool records) {
  isRecordingShortcut = records;
  platform::SetSymbolicHotKeysEnabled(!records);
}

std::string ShortcutState::shortcutText() const {
  return hotkeys::description(currentShortcutModifiers) + currentShortcutKey;
}

void ShortcutState::clearShortcut() {
  currentShortcutKey.clear();
  currentShortcutModifiers = {};
}

void ShortcutState::loadShortcut(const ShortcutRow& row) {
  clearShortcut();
  const NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
  currentShortcutKey = defaults.objectOfType<std::string>(row.textKey).value_or("");
  if (const auto list = listOf(defaults.objectForKey(row.listKey))) {
    currentShortcutModifiers = hotkeys::modifierFlagsFromList(*list);
  }
}

void ShortcutState::reload(const ShortcutRow& row) {
  if (currentGeneralVc)
    currentGeneralVc->reload(row);
  else
    loadShortcut(row);
}

ShortcutState& shortcutState() {
  return *platform::Runtime::current().instance<ShortcutState>();
}

}  // namespace preferences
