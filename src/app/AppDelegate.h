#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "hotkeys/HotKey.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSPopover.h"
#include "platform/appkit/NSStatusItem.h"
#include "platform/updates/SUUpdater.h"
#include "preferences/ShortcutState.h"
#include "presentation/ViewController.h"

namespace app {

/// The application's delegate and its one long-lived object: the status item, its popover with the
/// panel, its menu, the two shortcuts, and the launch sequence. Main thread only.
class AppDelegate final : public platform::NSObject,
                          public platform::NSApplicationDelegate,
                          public platform::NSMenuDelegate,
                          public presentation::PanelHost,
                          public preferences::PreferencesHost {
 public:
  /// Puts the status item into the status bar, without an image yet.
  AppDelegate();

  [[nodiscard]] const std::shared_ptr<platform::NSPopover>& popover() const override {
    return popover_;
  }
  /// Null until launch, and on a desktop whose status items have no button.
  [[nodiscard]] const std::shared_ptr<platform::NSStatusBarButton>& statusbutton() const override {
    return statusbutton_;
  }
  [[nodiscard]] const std::shared_ptr<platform::NSStatusItem>& statusItem() const {
    return statusItem_;
  }
  /// Null until launch.
  [[nodiscard]] const std::shared_ptr<platform::NSMenu>& statusBarMenu() const {
    return statusBarMenu_;
  }
  /// Null until launch.
  [[nodiscard]] const std::shared_ptr<platform::SUUpdater>& updater() const { return updater_; }
  /// The shortcuts, each null while it has no combination. One that the desktop refused is there
  /// too, and hears of nothing.
  [[nodiscard]] const std::shared_ptr<hotkeys::HotKey>& hotKeyToggleApp() const {
    return hotKeyToggleApp_;
  }
  [[nodiscard]] const std::shared_ptr<hotkeys::HotKey>& hotKeyMuteMic() const {
    return hotKeyMuteMic_;
  }

  // --- Messages ---
  void applicationWillFinishLaunching() override { launchSetup(); }
  void applicationDidFinishLaunching() override {}
  /// Nothing is taken back: the effects of the mode outlast the program.
  void applicationWillTerminate() override {}
  void applicationShouldHandleReopen() override { showPopover(); }
  /// What the shortcuts and the menu do.
  [[nodiscard]] std::function<void()> applicationAction(std::string_view name) override;
  void checkForUpdate();
  void showPreferences();
  void quitApp();
  /// Action of the status button.
  void togglePopover(platform::NSObject* sender) { handleStatusItemClick(sender); }
  void showPopover();
  void menuDidClose(platform::NSMenu& menu) override;
  /// Gives the shortcut the current combination of the shortcut state, in place of the one it had.
  /// A refusal by the desktop is told to the user.
  void registerToggleAppHotKey() { registerHotKey(preferences::ShortcutRow::toggleApp); }
  void registerMuteMicHotKey() { registerHotKey(preferences::ShortcutRow::muteMic); }
  void unregisterToggleAppHotKey() { hotKeyToggleApp_ = nullptr; }
  void unregisterMuteMicHotKey() { hotKeyMuteMic_ = nullptr; }

  // --- For the preferences ---
  void registerHotKey(const preferences::ShortcutRow& row) override;
  void unregisterHotKey(const preferences::ShortcutRow& row) override { fieldOf(row) = nullptr; }
  [[nodiscard]] const std::shared_ptr<hotkeys::HotKey>& hotKey(
      const preferences::ShortcutRow& row) const override {
    return row.isMuteMic ? hotKeyMuteMic_ : hotKeyToggleApp_;
  }
  void setLaunchAtStartup(bool launches) override;

  [[nodiscard]] const platform::ClassDescription& classDescription() const override;

 private:
  void launchSetup();
  void applyLaunchAtLogin();
  void statusItemSetup();
  void setUpStatusButton();
  void registerStoredHotKeys();
  void buildStatusBarMenu();
  void setUpUpdater();
  void handleStatusItemClick(platform::NSObject* sender);
  void toggleAppPressed();
  /// What the row's shortcut does.
  [[nodiscard]] hotkeys::HotKey::Handler actionOf(const preferences::ShortcutRow& row);
  [[nodiscard]] std::shared_ptr<hotkeys::HotKey>& fieldOf(const preferences::ShortcutRow& row) {
    return row.isMuteMic ? hotKeyMuteMic_ : hotKeyToggleApp_;
  }

  std::shared_ptr<platform::NSPopover> popover_;
  std::shared_ptr<platform::NSStatusBarButton> statusbutton_;
  std::shared_ptr<platform::NSStatusItem> statusItem_;
  std::shared_ptr<platform::NSMenu> statusBarMenu_;
  std::shared_ptr<platform::SUUpdater> updater_;
  // The only owners, so that emptying one unregisters it.
  std::shared_ptr<hotkeys::HotKey> hotKeyToggleApp_;
  std::shared_ptr<hotkeys::HotKey> hotKeyMuteMic_;
};

}  // namespace app
