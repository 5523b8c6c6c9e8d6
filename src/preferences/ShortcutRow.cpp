#include "preferences/ShortcutRow.h"

#include "preferences/ShortcutState.h"
#include "preferences/generalVc.h"
#include "settings/SettingsKeys.h"

namespace preferences {

const ShortcutRow ShortcutRow::toggleApp{
    .box = &generalVc::boxShortcutToggleApp,
    .label = &generalVc::lblShortcutToggleApp,
    .clearButton = &generalVc::btnClearShortcut_ToggleApp,
    .textKey = settings::kuserdefault_ToggleAppShortcut,
    .listKey = settings::kuserdefault_ToggleAppFlag,
    .registerHotKey = &PreferencesHost::registerToggleAppHotKey,
    .unregisterHotKey = &PreferencesHost::unregisterToggleAppHotKey,
    .isMuteMic = false,
};

const ShortcutRow ShortcutRow::muteMic{
    .box = &generalVc::boxShortcutMuteMic,
    .label = &generalVc::lblShortcutMuteMic,
    .clearButton = &generalVc::btnClearShortcut_MuteMic,
    .textKey = settings::kuserdefault_MuteMicShortcut,
    .listKey = settings::kuserdefault_MuteMicFlag,
    .registerHotKey = &PreferencesHost::registerMuteMicHotKey,
    .unregisterHotKey = &PreferencesHost::unregisterMuteMicHotKey,
    .isMuteMic = true,
};

const ShortcutRow& ShortcutRow::recording() {
  return shortcutState().recordingMuteMic ? muteMic : toggleApp;
}

}  // namespace preferences
