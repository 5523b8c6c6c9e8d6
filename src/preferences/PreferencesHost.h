#pragma once

namespace preferences {

/// What the preferences need of the application that shows them.
class PreferencesHost {
 public:
  virtual ~PreferencesHost() = default;

  // Registering takes the combination from `shortcutState` and gives the one before back
  // afterwards; a refusal comes back as preferencesWindowController::showShortcutUnavailableAlert,
  // at once.
  virtual void registerToggleAppHotKey() = 0;
  virtual void unregisterToggleAppHotKey() = 0;
  virtual void registerMuteMicHotKey() = 0;
  virtual void unregisterMuteMicHotKey() = 0;

  /// Puts the program among the login items, or takes it away.
  virtual void setLaunchAtStartup(bool launches) = 0;
};

}  // namespace preferences
