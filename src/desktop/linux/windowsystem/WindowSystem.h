#pragma once

#include "desktop/linux/windowsystem/CoverWindows.h"
#include "desktop/linux/windowsystem/KeyTranslator.h"
#include "desktop/linux/windowsystem/LegacyTray.h"
#include "desktop/linux/windowsystem/OwnWindows.h"
#include "platform/port/DesktopPictures.h"
#include "platform/port/HotKeys.h"
#include "platform/port/RunningApplications.h"
#include "platform/port/Screens.h"
#include "platform/port/Spaces.h"
#include "platform/port/WindowList.h"

namespace linux_desktop {

/// What each window system does in its own way, behind one seam; everything else of the desktop is
/// shared. A null pointer: this window system cannot do it, and has said so in one line.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  virtual platform::port::Screens& screens() = 0;
  virtual OwnWindows& ownWindows() = 0;
  virtual LegacyTray* legacyTray() { return nullptr; }
  virtual CoverWindows* covers() { return nullptr; }
  virtual platform::port::DesktopPictures* desktopPictures() { return nullptr; }
  virtual platform::port::WindowList* windowList() { return nullptr; }
  virtual platform::port::Spaces* spaces() { return nullptr; }
  virtual platform::port::HotKeys* hotKeys() { return nullptr; }
  /// Null: key presses in windows cannot be told.
  virtual KeyTranslator* keyTranslator() { return nullptr; }
  virtual platform::port::RunningApplications* runningApplications() { return nullptr; }
};

}  // namespace linux_desktop
