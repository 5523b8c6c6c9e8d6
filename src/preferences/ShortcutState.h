#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "hotkeys/ModifierFlags.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSTextField.h"
#include "preferences/PreferencesHost.h"

namespace preferences {

class generalVc;

/// A shortcut's row of the pane: where it is shown, where it is kept, and who makes it work.
struct ShortcutRow {
  std::weak_ptr<platform::NSBox> generalVc::*box;
  std::weak_ptr<platform::NSTextField> generalVc::*label;
  std::weak_ptr<platform::NSButton> generalVc::*recordButton;
  std::weak_ptr<platform::NSButton> generalVc::*clearButton;
  std::string_view textKey;
  std::string_view listKey;
  /// What it does, for users who bind the keys themselves.
  std::string_view action;
  void (PreferencesHost::*registerHotKey)();
  void (PreferencesHost::*unregisterHotKey)();
  const std::shared_ptr<hotkeys::HotKey>& (PreferencesHost::*hotKey)() const;
  /// The value of `ShortcutState::recordingMuteMic` that names the row.
  bool isMuteMic;

  static const ShortcutRow toggleApp;
  static const ShortcutRow muteMic;

  /// The row that records, or recorded last.
  [[nodiscard]] static const ShortcutRow& recording();
};

class generalVc;

/// What the recorder, the pane and the registration of hot keys share: one set of values for the
/// whole process. Main thread only.
struct ShortcutState {
  /// The key text and the modifiers of the shortcut that is being recorded, shown or registered. No
  /// modifiers: no shortcut.
  std::string currentShortcutKey;
  hotkeys::ModifierFlags currentShortcutModifiers;
  bool isRecordingShortcut = false;
  /// The row that records, or recorded last: the microphone's, else the one of the mode.
  bool recordingMuteMic = false;
  /// The pane that loaded its view last; null before the first has.
  std::shared_ptr<generalVc> currentGeneralVc;

  /// While one records, the keys that the desktop would act on are for it too.
  void setRecording(bool records);
  /// As a row shows it: the modifiers' symbols and the key text, "⌃⌘r".
  [[nodiscard]] std::string shortcutText() const;
  /// Forgets the key text and the modifiers.
  void clearShortcut();
  /// Takes both from the settings under these keys. What is absent, or of another type than a
  /// String and an Array of integers, counts as empty.
  void loadShortcut(std::string_view textKey, std::string_view listKey);
  /// Takes the row's shortcut from the settings, and has the pane show it anew, if there is one.
  void reload(const ShortcutRow& row);
};

/// The current Runtime's.
[[nodiscard]] ShortcutState& shortcutState();

}  // namespace preferences
