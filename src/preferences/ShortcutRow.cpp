#include "preferences/ShortcutRow.h"

#include "preferences/ShortcutState.h"
#include "preferences/generalVc.h"
#include "shared/SettingsKeys.h"

namespace preferences {

const ShortcutRow ShortcutRow::toggleApp{
    .box = &generalVc::boxShortcutToggleApp,
    .label = &generalVc::lblShortcutToggleApp,
    .recordButton = &generalVc::btnRecordShortcutToggleApp,
    .clearButton = &generalVc::btnClearShortcut_ToggleApp,
    .textKey = shared::kuserdefault_ToggleAppShortcut,
    .listKey = shared::kuserdefault_ToggleAppFlag,
    .registerHotKey = &PreferencesHost::registerToggleAppHotKey,
    .unregisterHotKey = &PreferencesHost::unregisterToggleAppHotKey,
    .isMuteMic = false,
};

const ShortcutRow ShortcutRow::muteMic{
    .box = &generalVc::boxShortcutMuteMic,
    .label = &generalVc::lblShortcutMuteMic,
    .recordButton = &generalVc::btnRecordShortcutMuteMic,
    .clearButton = &generalVc::btnClearShortcut_MuteMic,
    .textKey = shared::kuserdefault_MuteMicShortcut,
    .listKey = shared::kuserdefault_MuteMicFlag,
    .registerHotKey = &PreferencesHost::registerMuteMicHotKey,
    .unregisterHotKey = &PreferencesHost::unregisterMuteMicHotKey,
    .isMuteMic = true,
};

const ShortcutRow& ShortcutRow::recording() {
  return shortcutState().recordingMuteMic ? muteMic : toggleApp;
}

}  // namespace preferences
