#include "preferences/generalVc.h"

#include <array>

#include "platform/appkit/NSAlert.h"
#include "platform/foundation/NSBundle.h"
#include "platform/foundation/NSUserDefaults.h"
#include "shared/SettingsKeys.h"

namespace preferences {

using platform::NSControlStateValue;
using platform::NSLocalizedString;
using platform::NSUserDefaults;

namespace {

/// The file-name extensions that the wallpaper chooser accepts.
const std::vector<std::string>& allowedWallpaperTypes() {
  static const std::vector<std::string> types{
      "jpeg", "jpg", "png",     "tga",  "pict", "tiff", "tif",  "pct", "pic", "jp2", "jpf", "j2k",
      "jpx",  "j2c", "gif",     "AI",   "GIF",  "bmp",  "dng",  "dae", "eps", "fax", "fpx", "hdr",
      "icns", "ico", "openexr", "ps",   "psd",  "pntg", "qtif", "rad", "sgi", "xbm", "pic", "jpe",
      "heic", "mpo", "exr",     "rgbe", "xyze", "mos",  "cr2",  "fff", "nef", "nrw", "pef", "sr2",
      "srf",  "3fr", "arw",     "crw",  "dcr",  "erf",  "gpr",  "iiq", "kdc", "mdc", "mef", "mrw",
      "orf",  "raf", "rwl",     "srw",  "x3f",  "pbm",  "psb"};
  return types;
}

}  // namespace

// --- Life cycle ---

void generalVc::viewDidLoad() {
  NSViewController::viewDidLoad();
  shortcutState().currentGeneralVc = std::static_pointer_cast<generalVc>(shared_from_this());
  borderNormalColor = connected(&generalVc::boxShortcutToggleApp).borderColor();
}

void generalVc::viewWillAppear() {
  const NSUserDefaults& defaults = NSUserDefaults::standardUserDefaults();
  if (const auto launches = defaults.objectOfType<bool>(shared::kUserdeaultsLaunchAtLogin)) {
    connected(&generalVc::checkBoxLaunchAtLogin)
        .setState(*launches ? NSControlStateValue::On : NSControlStateValue::Off);
  }
  connected(&generalVc::lblCurrentWallpaper)
      .setStringValue(defaults.objectOfType<std::string>(shared::kUserdefaultsSelectedWallpaper)
                          .value_or(NSLocalizedString("Please select a Wallpaper")));
  shortcutState().setRecording(false);
  reload_ToggleApp();
  reload_MuteMicShortcut();
}

void generalVc::viewWillDisappear() {
  resetCurrentRecording();
  shortcutState().setRecording(false);
}

// --- Actions ---

void generalVc::checkBoxLaunchAtLoginClicked() {
  const bool launches =
      connected(&generalVc::checkBoxLaunchAtLogin).state() == NSControlStateValue::On;
  NSUserDefaults::standardUserDefaults().setBool(launches, shared::kUserdeaultsLaunchAtLogin);
  host_().setLaunchAtStartup(launches);
}

void generalVc::btnChangeWallpaperClicked() {
  const auto url = chooseWallpaperImage();
  if (!url) return;
  NSUserDefaults::standardUserDefaults().setObject(url->path(),
                                                   shared::kUserdefaultsSelectedWallpaper);
  connected(&generalVc::lblCurrentWallpaper).setStringValue(url->path());
}

std::optional<platform::NSURL> generalVc::chooseWallpaperImage() {
  platform::NSOpenPanel panel;
  panel.setCanChooseFiles(true);
  panel.setCanChooseDirectories(false);
  panel.setMessage(NSLocalizedString("Please select an image"));
  panel.setAllowedFileTypes(allowedWallpaperTypes());
  panel.setPrompt(NSLocalizedString("Select"));
  if (panel.runModal() != platform::NSModalResponse::OK) return std::nullopt;
  return panel.URL();
}

const platform::ClassDescription& generalVc::classDescription() const {
  using platform::message;
  using platform::outlet;
  static constexpr std::array messages{
      message<&generalVc::reload_ToggleApp>("reload_ToggleApp"),
      message<&generalVc::reload_MuteMicShortcut>("reload_MuteMicShortcut"),
      message<&generalVc::resetCurrentRecording>("resetCurrentRecording"),
      message<&generalVc::checkBoxLaunchAtLoginClicked>("checkBoxLaunchAtLoginClicked:"),
      message<&generalVc::btnChangeWallpaperClicked>("btnChangeWallpaperClicked:"),
      message<&generalVc::btnRecordShortcutToggleAppClicked>("btnRecordShortcutToggleAppClicked:"),
      message<&generalVc::btnRecordShortcutMuteMicClicked>("btnRecordShortcutMuteMic:"),
      message<&generalVc::btnClearShortcut_ToggleAppClicked>("btnClearShortcut_ToggleAppClicked:"),
      message<&generalVc::btnClearShortcutMuteMicClicked>("btnClearShortcutMuteMic:"),
  };
  static constexpr std::array outlets{
      outlet<&generalVc::boxShortcutToggleApp>("boxShortcutToggleApp"),
      outlet<&generalVc::boxShortcutMuteMic>("boxShortcutMuteMic"),
      outlet<&generalVc::btnClearShortcut_ToggleApp>("btnClearShortcut_ToggleApp"),
      outlet<&generalVc::btnClearShortcut_MuteMic>("btnClearShortcut_MuteMic"),
      outlet<&generalVc::btnRecordShortcutToggleApp>("btnRecordShortcutToggleApp"),
      outlet<&generalVc::btnRecordShortcutMuteMic>("btnRecordShortcutMuteMic"),
      outlet<&generalVc::lblShortcutToggleApp>("lblShortcutToggleApp"),
      outlet<&generalVc::lblShortcutMuteMic>("lblShortcutMuteMic"),
      outlet<&generalVc::lblOwnKeyBindings>("lblOwnKeyBindings"),
      outlet<&generalVc::lblOwnKeyBindingsNote>("lblOwnKeyBindingsNote"),
      outlet<&generalVc::lblAssignedKeysNote>("lblAssignedKeysNote"),
      outlet<&generalVc::lblCurrentWallpaper>("lblCurrentWallpaper"),
      outlet<&generalVc::btnChangeWallpaper>("btnChangeWallpaper"),
      outlet<&generalVc::checkBoxLaunchAtLogin>("checkBoxLaunchAtLogin"),
  };
  static constexpr platform::ClassDescription description{
      .className = "generalVc", .messages = messages, .outlets = outlets};
  return description;
}

}  // namespace preferences
