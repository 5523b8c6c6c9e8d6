#pragma once

#include <memory>

#include "hotkeys/HotKey.h"

namespace preferences {

/// What the preferences need of the application that shows them.
class PreferencesHost {
 public:
  virtual ~PreferencesHost() = default;

  // Registering takes the combination from `shortcutState` and gives the one before back
  // afterwards; a refusal comes back as preferencesWindowController::showShortcutUnavailableAlert,
  // at once or, where the desktop assigns the keys itself, whenever it has answered.
  virtual void registerToggleAppHotKey() = 0;
  virtual void unregisterToggleAppHotKey() = 0;
  virtual void registerMuteMicHotKey() = 0;
  virtual void unregisterMuteMicHotKey() = 0;
  // Each null while its row has no shortcut, and while it records.
  [[nodiscard]] virtual const std::shared_ptr<hotkeys::HotKey>& hotKeyToggleApp() const = 0;
  [[nodiscard]] virtual const std::shared_ptr<hotkeys::HotKey>& hotKeyMuteMic() const = 0;

  /// Puts the program among the login items, or takes it away.
  virtual void setLaunchAtStartup(bool launches) = 0;
};

}  // namespace preferences
