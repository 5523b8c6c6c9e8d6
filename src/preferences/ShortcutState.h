#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "hotkeys/ModifierFlags.h"

namespace preferences {

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

  /// As a row shows it: the modifiers' symbols and the key text, "⌃⌘r".
  [[nodiscard]] std::string shortcutText() const;
  /// Forgets the key text and the modifiers.
  void clearShortcut();
  /// Takes both from the settings under these keys. What is absent, or of another type than a
  /// String and an Array of integers, counts as empty.
  void loadShortcut(std::string_view textKey, std::string_view listKey);
};

/// The current Runtime's.
[[nodiscard]] ShortcutState& shortcutState();

}  // namespace preferences
