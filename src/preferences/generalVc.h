#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/appkit/NSControl.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSViewController.h"
#include "platform/foundation/SmallValues.h"
#include "preferences/ShortcutState.h"

namespace preferences {

/// The General pane: the two shortcuts, the wallpaper that the mode puts on the screens, and
/// whether the program starts at login. Each time that it appears it reads all of that from the
/// settings anew; what the user changes is stored at once.
///
/// A shortcut's row shows "Record Shortcut", or its shortcut and a clear button; while it records
/// it is empty and its box is blue. One row records at most (see ShortcutState); the key presses
/// reach preferencesWindowController. Main thread only.
class generalVc final : public platform::NSViewController {
 public:
  /// Asked for each time that the host is needed; set before the pane appears.
  void setHostProvider(std::function<PreferencesHost&()> provider) { host_ = std::move(provider); }

  std::weak_ptr<platform::NSBox> boxShortcutToggleApp;
  std::weak_ptr<platform::NSBox> boxShortcutMuteMic;
  std::weak_ptr<platform::NSButton> btnClearShortcut_ToggleApp;
  std::weak_ptr<platform::NSButton> btnClearShortcut_MuteMic;
  std::weak_ptr<platform::NSButton> btnRecordShortcutToggleApp;
  std::weak_ptr<platform::NSButton> btnRecordShortcutMuteMic;
  std::weak_ptr<platform::NSTextField> lblShortcutToggleApp;
  std::weak_ptr<platform::NSTextField> lblShortcutMuteMic;
  std::weak_ptr<platform::NSTextField> lblOwnKeyBindings;
  std::weak_ptr<platform::NSTextField> lblOwnKeyBindingsNote;
  std::weak_ptr<platform::NSTextField> lblAssignedKeysNote;
  std::weak_ptr<platform::NSTextField> lblCurrentWallpaper;
  std::weak_ptr<platform::NSButton> btnChangeWallpaper;
  std::weak_ptr<platform::NSButton> checkBoxLaunchAtLogin;
  /// Of a box whose row does not record: what the description says.
  platform::NSColor borderNormalColor = platform::NSColor::grayColor();

  void viewDidLoad() override;
  void viewWillAppear() override;
  /// Ends a recording without a new shortcut.
  void viewWillDisappear() override;

  // --- Actions ---
  void checkBoxLaunchAtLoginClicked();
  void btnChangeWallpaperClicked();
  void btnRecordShortcutToggleAppClicked() { startRecording(ShortcutRow::toggleApp); }
  void btnRecordShortcutMuteMicClicked() { startRecording(ShortcutRow::muteMic); }
  void btnClearShortcut_ToggleAppClicked() { clear(ShortcutRow::toggleApp); }
  void btnClearShortcutMuteMicClicked() { clear(ShortcutRow::muteMic); }

  // --- Shortcuts (generalVcShortcuts.cpp) ---
  void reload_ToggleApp() { reload(ShortcutRow::toggleApp); }
  void reload_MuteMicShortcut() { reload(ShortcutRow::muteMic); }
  /// Shows the stored shortcut, or the name of the keys that the desktop gave in its place.
  void reload(const ShortcutRow& row) const;
  /// Gives the row that records its stored shortcut and its hot key back; its caller decides
  /// whether a row still records.
  void resetCurrentRecording();
  /// Ends the recording before, if there is one, and waits for a key press. The row's own hot key
  /// is given back, so that its combination reaches the window.
  void startRecording(const ShortcutRow& row);
  /// Leaves the recording of a row that has its new shortcut.
  void endRecording();
  void showShortcut(const ShortcutRow& row, const std::string& text) const;
  /// Where users bind the keys themselves: what to write down for the stored shortcuts. Where the
  /// desktop has assigned them: that it did.
  void showWhoBindsKeys() const;

  [[nodiscard]] const platform::ClassDescription& classDescription() const override;

 private:
  /// Lets the user choose a file; none when the user did not.
  [[nodiscard]] static std::optional<platform::NSURL> chooseWallpaperImage();
  void clear(const ShortcutRow& row) const;
  /// The name of the keys that the desktop has given the row itself; empty: none.
  [[nodiscard]] std::string assignedKeys(const ShortcutRow& row) const;
  void showClearButton(const ShortcutRow& row, bool shown) const;
  /// On the frame, and to a screen reader.
  void showRecording(const ShortcutRow& row, bool records) const;
  /// What a screen reader hears of the row: the shortcut that it shows, unless it records.
  void describe(const ShortcutRow& row, bool records) const;
  template <typename View>
  [[nodiscard]] View& connected(std::weak_ptr<View> generalVc::*outlet) const {
    const std::shared_ptr<View> view = (this->*outlet).lock();
    if (!view) platform::programmingError("an outlet of the General pane is not connected");
    return *view;
  }

  std::function<PreferencesHost&()> host_;
};

}  // namespace preferences
