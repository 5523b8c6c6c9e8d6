#pragma once

#include <memory>

#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSMenu.h"
#include "platform/appkit/NSPopover.h"
#include "platform/appkit/NSStatusItem.h"
#include "platform/foundation/NSCoder.h"
#include "platform/updates/SUUpdater.h"
#include "presentation/PanelHost.h"

namespace app {

/// The application's delegate and its one long-lived object: the status item, its popover with the
/// panel, its menu, and the launch sequence. Main thread only.
class AppDelegate final : public platform::NSObject,
                          public platform::NSApplicationDelegate,
                          public platform::NSMenuDelegate,
                          public platform::NSMenuItemValidation,
                          public presentation::PanelHost {
 public:
  [[nodiscard]] static std::shared_ptr<AppDelegate> initWithCoder(const platform::NSCoder& coder);
  /// Puts the status item into the status bar, without an image yet.
  AppDelegate();

  [[nodiscard]] const std::shared_ptr<platform::NSPopover>& popover() const { return popover_; }
  /// Null until launch, and on a desktop whose status items have no button.
  [[nodiscard]] const std::shared_ptr<platform::NSStatusBarButton>& statusbutton() const {
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

  // --- Messages ---
  void applicationWillFinishLaunching() override;
  void applicationDidFinishLaunching() override {}
  /// Nothing is taken back: the effects of the mode outlast the program.
  void applicationWillTerminate() override {}
  void applicationShouldHandleReopen() override { showPopover(); }
  void checkForUpdate();
  void quitApp();
  /// Action of the status button.
  void togglePopover(platform::NSObject* sender);
  void showPopover();
  void menuDidClose(platform::NSMenu& menu) override;
  [[nodiscard]] bool validateMenuItem(const platform::NSMenuItem& item) override;

  [[nodiscard]] std::shared_ptr<platform::NSStatusBarButton> statusButton() override {
    return statusbutton_;
  }
  [[nodiscard]] platform::NSPopover& panelPopover() override { return *popover_; }

  [[nodiscard]] const platform::ClassDescription& classDescription() const override;

 private:
  void launchSetup();
  void applyLaunchAtLogin();
  void statusItemSetup();
  void buildStatusBarMenu();
  void setUpUpdater();
  void handleStatusItemClick(platform::NSObject* sender);

  std::shared_ptr<platform::NSPopover> popover_;
  std::shared_ptr<platform::NSStatusBarButton> statusbutton_;
  std::shared_ptr<platform::NSStatusItem> statusItem_;
  std::shared_ptr<platform::NSMenu> statusBarMenu_;
  std::shared_ptr<platform::SUUpdater> updater_;
};

}  // namespace app
