#pragma once

#include <any>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/CToggleButton.h"
#include "platform/appkit/NSPopover.h"
#include "platform/appkit/NSStatusItem.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSViewController.h"
#include "platform/appkit/NSWindow.h"
#include "platform/appkit/NSWorkspace.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "platform/foundation/NSRunLoop.h"
#include "presentation/PanelCaptions.h"

namespace presentation {

/// What the panel needs of the application that shows it.
class PanelHost {
 public:
  virtual ~PanelHost() = default;
  /// The button whose image shows the mode; null when there is none.
  [[nodiscard]] virtual const std::shared_ptr<platform::NSStatusBarButton>& statusbutton()
      const = 0;
  /// The popover that the panel is shown in.
  [[nodiscard]] virtual const std::shared_ptr<platform::NSPopover>& popover() const = 0;
};

/// The window that covers a screen's desktop icons: above them, below every normal window.
class BGWindow final : public platform::NSWindow {
 public:
  using NSWindow::NSWindow;

  /// The keyboard never goes to a cover.
  [[nodiscard]] bool acceptsFirstResponder() const override { return false; }
};

/// The panel, and with it presentation mode.
///
/// Six switches: the master switch, and one for each feature of the mode. The mode is on exactly
/// while the master switch is on, and a feature belongs to it exactly while its switch is on; there
/// is no other state. While the mode is on a feature switch acts at once. Feature switches are kept
/// in the settings, the master switch never: each launch starts with the mode off.
///
/// Feature operations deal with their own failures and report nothing back; no switch changes
/// because a feature failed. Each feature's operations stand in a file of their own. Main thread
/// only.
class ViewController final : public platform::NSViewController {
 public:
  /// Asked for each time that the host is needed; it outlives the controller's use of it. Set once,
  /// before the view loads.
  void setHostProvider(std::function<PanelHost&()> provider) { host_ = std::move(provider); }

  std::weak_ptr<controls::CToggleButton> toggleButtonPresentationMode;
  std::weak_ptr<controls::CToggleButton> toggleButtonHideDesktopIcons;
  std::weak_ptr<controls::CToggleButton> toggleButtonDisableNotifications;
  std::weak_ptr<controls::CToggleButton> toggleButtonHideActiveApps;
  std::weak_ptr<controls::CToggleButton> toggleButtonTurnOffSpeaker;
  std::weak_ptr<controls::CToggleButton> toggleButtonChangeWallpaper;
  /// Hidden once the view has loaded.
  std::weak_ptr<platform::NSTextField> lblComingSoon;
  /// The lines below the switches' names, see PanelCaptions.
  std::weak_ptr<platform::NSTextField> lblPresentationMode;
  std::weak_ptr<platform::NSTextField> lblHideDesktopIcons;
  std::weak_ptr<platform::NSTextField> lblDisableNotifications;
  std::weak_ptr<platform::NSTextField> lblHideActiveApps;
  std::weak_ptr<platform::NSTextField> lblTurnOffSpeaker;
  std::weak_ptr<platform::NSTextField> lblChangeWallpaper;

  void viewDidLoad() override;
  void viewDidAppear() override;
  [[nodiscard]] std::any representedObject() const override {
    return NSViewController::representedObject();
  }
  void setRepresentedObject(std::any object) override {
    NSViewController::setRepresentedObject(std::move(object));
  }

  /// Flips the master switch and starts or stops the mode: the road of the global shortcut. Loads
  /// the view first if that has not happened yet.
  void togglePresentationMode();

  /// Observer of "toggle": acts on the switch that the user flipped. A notification without the
  /// entries "isOn" (Bool) and "index" (integer) is ignored.
  void btnToggleClickedWithNotification(const platform::NSNotification& notification);

  /// What the desktop can do has changed.
  void availabilityDidChange() { captions_.refresh(); }

  // --- Desktop icons (DesktopCovers.cpp) ---
  /// Puts a cover on every screen and follows changes of the space and of the screens.
  void doHideDesktopIcon();
  /// Takes all covers down and follows no more.
  void doShowDesktopIcon();
  /// Gives each cover the picture of its screen. While the feature's switch is off: does nothing.
  void spaceChange();
  void screenChangedWithNotification(const platform::NSNotification& notification);
  /// In the order of the window list, each of the capture's size in pixels.
  [[nodiscard]] static std::vector<std::shared_ptr<platform::NSImage>> captureDesktopPictures();
  /// The new cover, already among `transWindow`.
  std::shared_ptr<BGWindow> makeCoverWindow(const platform::NSScreen& screen);
  /// The covers; cover i was made for screen i.
  [[nodiscard]] const std::vector<std::shared_ptr<BGWindow>>& transWindow() const {
    return transWindow_;
  }

  // --- Do Not Disturb (DoNotDisturb.cpp) ---
  void turnOnDoNotDisturb();
  void turnOffDoNotDisturb();

  // --- Other applications (HidingApplications.cpp) ---
  /// Hides every regular application but Finder, at once and again after the current event.
  void hideAllApps();
  /// Shows every regular application that is hidden, whoever hid it.
  void showAllHiddenApps();

  // --- Wallpaper (WallpaperSwap.cpp) ---
  /// One remembered desktop picture; both are set.
  struct structScreenUrl {
    std::shared_ptr<platform::NSScreen> screen;
    std::optional<platform::NSURL> url;
  };
  /// Remembers every screen's picture, then shows the chosen one, if there is one, on every screen.
  void applySelectedWallpaper();
  /// Puts the remembered pictures back and forgets them.
  void restoreOldWallpapers();
  /// Keeps the screen's scaling. A refusal is one line on standard output.
  static void setWallpaper(const std::string& path, const platform::NSScreen& screen);
  /// What `restoreOldWallpapers` would put back.
  [[nodiscard]] const std::vector<structScreenUrl>& oldWallpaperUrl() const {
    return oldWallpaperUrl_;
  }

  // --- Speaker (SpeakerMute.cpp) ---
  void muteSpeaker();
  void unmuteSpeaker();

  [[nodiscard]] const platform::ClassDescription& classDescription() const override;

 private:
  struct Feature;
  using Operation = void (ViewController::*)();
  using Switch = std::weak_ptr<controls::CToggleButton> ViewController::*;
  using Line = std::weak_ptr<platform::NSTextField> ViewController::*;

  [[nodiscard]] controls::CToggleButton& toggle(Switch outlet) const;
  [[nodiscard]] bool isOn(Switch outlet) const { return toggle(outlet).isOn(); }
  /// Runs the operation a second after the current event, of which the main thread sleeps: time for
  /// the desktop to show a new wallpaper.
  void deferCoverUpdate(Operation operation);
  void restoreFeatureSwitches();
  void setUpCaptions();
  [[nodiscard]] PanelCaptions::Row captionRow(
      Switch outlet, Line line,
      std::optional<platform::NSWorkspaceCapability> capability = std::nullopt) const;
  void act(std::int64_t index, bool isOn);
  void applyWhileOn(const Feature& feature, bool isOn);
  void startPresentationMode();
  void stopPresentationMode();
  /// To the user and to other programs.
  void showMode(bool isOn);
  /// The wallpaper cannot be swapped before one was chosen: says so and turns the switch back.
  void refuseWallpaper();

  std::function<PanelHost&()> host_;
  PanelCaptions captions_;
  std::vector<structScreenUrl> oldWallpaperUrl_;
  std::shared_ptr<platform::NSTimer> timerScreenChanged_;
  std::vector<std::shared_ptr<BGWindow>> transWindow_;
};

}  // namespace presentation
