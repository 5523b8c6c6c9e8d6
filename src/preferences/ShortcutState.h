#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "hotkeys/HotKey.h"
#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSTextField.h"

namespace preferences {

class generalVc;

/// A shortcut's row of the pane: where it is shown, where it is kept, and what it does.
struct ShortcutRow {
  std::weak_ptr<platform::NSBox> generalVc::*box;
  std::weak_ptr<platform::NSTextField> generalVc::*label;
  std::weak_ptr<platform::NSButton> generalVc::*recordButton;
  std::weak_ptr<platform::NSButton> generalVc::*clearButton;
  std::string_view textKey;
  std::string_view listKey;
  /// What it does, as it is asked for from outside of the program (see port::SessionClient). Users
  /// who bind the keys themselves write the name into their own files, so that it stays.
  std::string_view action;
  /// The value of `ShortcutState::recordingMuteMic` that names the row.
  bool isMuteMic;

  static const ShortcutRow toggleApp;
  static const ShortcutRow muteMic;

  /// The row that records, or recorded last.
  [[nodiscard]] static const ShortcutRow& recording();
};

/// What the preferences need of the application that shows them.
class PreferencesHost {
 public:
  virtual ~PreferencesHost() = default;

  /// Gives the row's hot key the combination of `shortcutState`, and the one before back
  /// afterwards. A refusal comes back as preferencesWindowController::showShortcutUnavailableAlert,
  /// at once or, where the desktop assigns the keys itself, whenever it has answered.
  virtual void registerHotKey(const ShortcutRow& row) = 0;
  virtual void unregisterHotKey(const ShortcutRow& row) = 0;
  /// Null while the row has no shortcut, and while it records.
  [[nodiscard]] virtual const std::shared_ptr<hotkeys::HotKey>& hotKey(
      const ShortcutRow& row) const = 0;

  /// Puts the program among the login items, or takes it away.
  virtual void setLaunchAtStartup(bool launches) = 0;
};

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
  /// Takes both from the row's settings. What is absent, or of another type than a String and an
  /// Array of integers, counts as empty.
  void loadShortcut(const ShortcutRow& row);
  /// Takes the row's shortcut from the settings, and has the pane show it anew, if there is one.
  void reload(const ShortcutRow& row);
};

/// The current Runtime's.
[[nodiscard]] ShortcutState& shortcutState();

}  // namespace preferences
