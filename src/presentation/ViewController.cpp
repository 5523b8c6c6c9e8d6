#include "presentation/ViewController.h"

#include <algorithm>
#include <array>

#include "platform/appkit/NSAlert.h"
#include "platform/appkit/NSApplication.h"
#include "platform/appkit/NSImage.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSUserDefaults.h"
#include "shared/SettingsKeys.h"

namespace presentation {

using controls::CToggleButton;
using platform::DispatchQueue;
using platform::NSLocalizedString;
using platform::NSUserDefaults;
using Capability = platform::NSWorkspaceCapability;

namespace {

constexpr std::int64_t kIconsIndex = 11;
constexpr std::int64_t kWallpaperIndex = 55;
constexpr std::int64_t kMasterIndex = 99;
constexpr double kCoverDelay = 1;
constexpr const char* kModeOnImage = "logo-active-small";
constexpr const char* kModeOffImage = "logo-initial-small";

}  // namespace

/// One feature of the mode: its switch, where that is kept, which place it has among the others
/// when the mode starts and when it stops, what switching it on and off does, and what that takes
/// of the desktop.
struct ViewController::Feature {
  std::int64_t index;
  Switch outlet;
  Line line;
  std::string_view key;
  int startPlace;
  int stopPlace;
  Operation turnOn;
  Operation turnOff;
  Capability capability;

  static const std::array<Feature, 5> all;
  [[nodiscard]] static std::array<Feature, 5> inOrder(int Feature::*place) {
    std::array<Feature, 5> features = all;
    std::ranges::sort(features, {}, place);
    return features;
  }
};

/// The wallpaper is there before the desktop is covered, and the covers go before it does.
const std::array<ViewController::Feature, 5> ViewController::Feature::all{{
    {kIconsIndex, &ViewController::toggleButtonHideDesktopIcons,
     &ViewController::lblHideDesktopIcons, shared::kUserdefaultsToggleDesktopIcons, 2, 1,
     &ViewController::doHideDesktopIcon, &ViewController::doShowDesktopIcon,
     Capability::CoverIcons},
    {22, &ViewController::toggleButtonDisableNotifications,
     &ViewController::lblDisableNotifications, shared::kUserdefaultsToggleDnd, 3, 3,
     &ViewController::turnOnDoNotDisturb, &ViewController::turnOffDoNotDisturb,
     Capability::DoNotDisturb},
    {33, &ViewController::toggleButtonHideActiveApps, &ViewController::lblHideActiveApps,
     shared::kUserdefaultsToggleHideActiveApps, 4, 4, &ViewController::hideAllApps,
     &ViewController::showAllHiddenApps, Capability::HideApplications},
    {44, &ViewController::toggleButtonTurnOffSpeaker, &ViewController::lblTurnOffSpeaker,
     shared::kUserdefaultsToggleSpeakerOff, 5, 5, &ViewController::muteSpeaker,
     &ViewController::unmuteSpeaker, Capability::MuteSpeaker},
    {kWallpaperIndex, &ViewController::toggleButtonChangeWallpaper,
     &ViewController::lblChangeWallpaper, shared::kUserdefaultsToggleWallpaper, 1, 2,
     &ViewController::applySelectedWallpaper, &ViewController::restoreOldWallpapers,
     Capability::SetPictures},
}};

// --- Life cycle ---

void ViewController::viewDidLoad() {
  NSViewController::viewDidLoad();
  toggle(&ViewController::toggleButtonPresentationMode).statetag = kMasterIndex;
  for (const Feature& feature : Feature::all) toggle(feature.outlet).statetag = feature.index;
  lblComingSoon.lock()->setHidden(true);
  restoreFeatureSwitches();
  setUpCaptions();
  platform::NSNotificationCenter::defaultCenter().addObserver(
      shared_from_this(), "btnToggleClickedWithNotification:", CToggleButton::kToggleNotification);
}

void ViewController::restoreFeatureSwitches() {
  for (const Feature& feature : Feature::all) {
    const auto stored = NSUserDefaults::standardUserDefaults().objectOfType<bool>(feature.key);
    if (stored) toggle(feature.outlet).setIsOn(*stored);
  }
}

PanelCaptions::Row ViewController::captionRow(Switch outlet, Line line,
                                              std::optional<Capability> capability) const {
  return {(this->*outlet).lock(), (this->*line).lock(), capability};
}

void ViewController::setUpCaptions() {
  captions_.setMaster(captionRow(&ViewController::toggleButtonPresentationMode,
                                 &ViewController::lblPresentationMode));
  for (const Feature& feature : Feature::all) {
    captions_.add(captionRow(feature.outlet, feature.line, feature.capability));
  }
  captions_.refresh();
  platform::NSWorkspace::sharedWorkspace().notificationCenter().addObserver(
      shared_from_this(), "availabilityDidChange",
      platform::NSWorkspaceAvailabilityDidChangeNotification);
}

void ViewController::viewDidAppear() {
  platform::NSApplication::sharedApplication().activateIgnoringOtherApps(true);
  if (platform::NSWindow* window = view()->window()) window->makeKeyWindow();
  // Not every desktop tells when another program draws it.
  captions_.refresh();
}

// --- Switches ---

CToggleButton& ViewController::toggle(Switch outlet) const {
  const std::shared_ptr<CToggleButton> connected = (this->*outlet).lock();
  if (!connected) platform::programmingError("a switch of the panel is not connected");
  return *connected;
}

void ViewController::btnToggleClickedWithNotification(
    const platform::NSNotification& notification) {
  if (!notification.userInfo()) return;
  const auto isOn = platform::valueOf<bool>(*notification.userInfo(), "isOn");
  const auto index = platform::valueOf<std::int64_t>(*notification.userInfo(), "index");
  if (!isOn || !index) return;
  act(*index, *isOn);
  captions_.refresh();
}

void ViewController::act(std::int64_t index, bool isOn) {
  if (index == kWallpaperIndex && isOn &&
      !NSUserDefaults::standardUserDefaults().objectOfType<std::string>(
          shared::kUserdefaultsSelectedWallpaper)) {
    refuseWallpaper();
    return;
  }
  if (index == kMasterIndex) {
    isOn ? startPresentationMode() : stopPresentationMode();
    return;
  }
  const auto* feature = std::ranges::find(Feature::all, index, &Feature::index);
  if (feature == Feature::all.end()) return;
  if (this->isOn(&ViewController::toggleButtonPresentationMode)) applyWhileOn(*feature, isOn);
  NSUserDefaults::standardUserDefaults().setBool(isOn, feature->key);
}

void ViewController::applyWhileOn(const Feature& feature, bool isOn) {
  (this->*(isOn ? feature.turnOn : feature.turnOff))();
  if (feature.index == kWallpaperIndex &&
      this->isOn(&ViewController::toggleButtonHideDesktopIcons)) {
    deferCoverUpdate(&ViewController::spaceChange);
  }
}

void ViewController::refuseWallpaper() {
  platform::NSPopover& popover = *host_().popover();
  // The alert takes the focus, and the panel must still be there when it is gone.
  popover.setBehavior(platform::NSPopoverBehavior::ApplicationDefined);
  platform::NSAlert alert;
  alert.setMessageText(NSLocalizedString("Please add a wallpaper in settings."));
  alert.setAlertStyle(platform::NSAlertStyle::Warning);
  alert.addButtonWithTitle(NSLocalizedString("OK"));
  static_cast<void>(alert.runModal());  // there is one answer
  toggle(&ViewController::toggleButtonChangeWallpaper).setIsOn(false);
  popover.setBehavior(platform::NSPopoverBehavior::Transient);
}

// --- The mode ---

void ViewController::togglePresentationMode() {
  loadViewIfNeeded();
  CToggleButton& master = toggle(&ViewController::toggleButtonPresentationMode);
  const bool turnsOn = !master.isOn();
  master.setIsOn(turnsOn);
  turnsOn ? startPresentationMode() : stopPresentationMode();
}

void ViewController::startPresentationMode() {
  showMode(true);
  for (const Feature& feature : Feature::inOrder(&Feature::startPlace)) {
    if (!isOn(feature.outlet)) continue;
    if (feature.index == kIconsIndex && isOn(&ViewController::toggleButtonChangeWallpaper)) {
      deferCoverUpdate(feature.turnOn);
    } else {
      (this->*feature.turnOn)();
    }
  }
}

void ViewController::stopPresentationMode() {
  showMode(false);
  for (const Feature& feature : Feature::inOrder(&Feature::stopPlace)) {
    if (isOn(feature.outlet)) (this->*feature.turnOff)();
  }
}

void ViewController::deferCoverUpdate(Operation operation) {
  const auto self = std::static_pointer_cast<ViewController>(shared_from_this());
  DispatchQueue::globalQueue().async([self, operation] {
    DispatchQueue::mainQueue().async([self, operation] {
      platform::NSRunLoop::mainRunLoop().sleep(kCoverDelay);
      ((*self).*operation)();
    });
  });
}

void ViewController::showMode(bool isOn) {
  if (const auto button = host_().statusbutton()) {
    button->setImage(platform::NSImage::imageNamed(isOn ? kModeOnImage : kModeOffImage));
    button->setToolTip(isOn ? NSLocalizedString("Calmdeck: presentation mode is on")
                            : NSLocalizedString("Calmdeck: presentation mode is off"));
  }
  platform::NSApplication::sharedApplication().showMode(isOn);
}

const platform::ClassDescription& ViewController::classDescription() const {
  static constexpr std::array messages{
      platform::message<&ViewController::btnToggleClickedWithNotification>(
          "btnToggleClickedWithNotification:"),
      platform::message<&ViewController::availabilityDidChange>("availabilityDidChange"),
      platform::message<&ViewController::hideAllApps>("hideAllApps"),
      platform::message<&ViewController::showAllHiddenApps>("showAllHiddenApps"),
      platform::message<&ViewController::doHideDesktopIcon>("doHideDesktopIcon"),
      platform::message<&ViewController::doShowDesktopIcon>("doShowDesktopIcon"),
      platform::message<&ViewController::spaceChange>("spaceChange"),
      platform::message<&ViewController::screenChangedWithNotification>(
          "screenChangedWithNotification:"),
  };
  static constexpr std::array outlets{
      platform::outlet<&ViewController::toggleButtonPresentationMode>(
          "toggleButtonPresentationMode"),
      platform::outlet<&ViewController::toggleButtonHideDesktopIcons>(
          "toggleButtonHideDesktopIcons"),
      platform::outlet<&ViewController::toggleButtonDisableNotifications>(
          "toggleButtonDisableNotifications"),
      platform::outlet<&ViewController::toggleButtonHideActiveApps>("toggleButtonHideActiveApps"),
      platform::outlet<&ViewController::toggleButtonTurnOffSpeaker>("toggleButtonTurnOffSpeaker"),
      platform::outlet<&ViewController::toggleButtonChangeWallpaper>("toggleButtonChangeWallpaper"),
      platform::outlet<&ViewController::lblComingSoon>("lblComingSoon"),
      platform::outlet<&ViewController::lblPresentationMode>("lblPresentationMode"),
      platform::outlet<&ViewController::lblHideDesktopIcons>("lblHideDesktopIcons"),
      platform::outlet<&ViewController::lblDisableNotifications>("lblDisableNotifications"),
      platform::outlet<&ViewController::lblHideActiveApps>("lblHideActiveApps"),
      platform::outlet<&ViewController::lblTurnOffSpeaker>("lblTurnOffSpeaker"),
      platform::outlet<&ViewController::lblChangeWallpaper>("lblChangeWallpaper"),
  };
  static constexpr platform::ClassDescription description{
      .className = "ViewController", .messages = messages, .outlets = outlets};
  return description;
}

}  // namespace presentation
