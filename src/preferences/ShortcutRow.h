#pragma once

#include <memory>
#include <string_view>

#include "platform/appkit/NSBox.h"
#include "platform/appkit/NSButton.h"
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
  void (PreferencesHost::*registerHotKey)();
  void (PreferencesHost::*unregisterHotKey)();
  /// The value of `ShortcutState::recordingMuteMic` that names the row.
  bool isMuteMic;

  static const ShortcutRow toggleApp;
  static const ShortcutRow muteMic;

  /// The row that records, or recorded last.
  [[nodiscard]] static const ShortcutRow& recording();
};

}  // namespace preferences
