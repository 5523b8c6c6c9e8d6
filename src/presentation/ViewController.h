#pragma once

#include <any>
#include <functional>
#include <memory>

#include "controls/CToggleButton.h"
#include "platform/appkit/NSTextField.h"
#include "platform/appkit/NSViewController.h"
#include "platform/foundation/NSNotificationCenter.h"
#include "presentation/PanelHost.h"

namespace presentation {

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
  [[nodiscard]] static std::shared_ptr<ViewController> initWithCoder(
      const platform::NSCoder& coder);

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

  void viewDidLoad() override;
  void viewDidAppear() override;
  [[nodiscard]] std::any representedObject() const override;
  void setRepresentedObject(std::any object) override;

  /// Flips the master switch and starts or stops the mode: the road of the global shortcut. Loads
  /// the view first if that has not happened yet.
  void togglePresentationMode();

  /// Observer of "toggle": acts on the switch that the user flipped. A notification without the
  /// entries "isOn" (Bool) and "index" (integer) is ignored.
  void btnToggleClickedWithNotification(const platform::NSNotification& notification);

  // --- Speaker (SpeakerMute.cpp) ---
  void muteSpeaker();
  void unmuteSpeaker();

  [[nodiscard]] const platform::ClassDescription& classDescription() const override;

 private:
  struct Feature;

  [[nodiscard]] static const Feature* featureWithIndex(std::int64_t index);
  [[nodiscard]] controls::CToggleButton& toggle(
      std::weak_ptr<controls::CToggleButton> ViewController::*outlet) const;

  void restoreFeatureSwitches();
  void startPresentationMode();
  void stopPresentationMode();
  void showMode(const char* imageName);
  /// The wallpaper cannot be swapped before one was chosen: says so and turns the switch back.
  void refuseWallpaper();

  std::function<PanelHost&()> host_;
};

}  // namespace presentation
