#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "platform/appkit/NSWindowController.h"
#include "preferences/ShortcutState.h"

namespace preferences {

/// The window of the preferences, and the recorder: while a row of the pane records, the next key
/// press with Control, Option, Shift or Command becomes its shortcut. Main thread only.
class preferencesWindowController final : public platform::NSWindowController {
 public:
  /// Asked for each time that the host is needed; set before the window loads.
  void setHostProvider(std::function<PreferencesHost&()> provider) { host_ = std::move(provider); }

  void windowDidLoad() override;
  /// Prints the key code of every key press.
  void keyDown(const platform::NSEvent& event) override;
  /// The desktop refused the combination of the shortcut state: asks for another one in a sheet
  /// that names it, and records once that is dismissed. Does not wait.
  void showShortcutUnavailableAlert();

 private:
  void refuseReserved();
  void takeShortcut(const platform::NSEvent& event);
  static void recordAfterRefusals(const std::set<std::string>& refused);
  /// Asks for another combination in a sheet on the window.
  void askForAnother(const std::string& informativeText,
                     std::function<void(int response)> completionHandler);

  std::function<PreferencesHost&()> host_;
  /// What was refused and has a sheet that waits, each as a row shows it; the sheets own it.
  std::weak_ptr<std::set<std::string>> askedAbout_;
};

}  // namespace preferences
