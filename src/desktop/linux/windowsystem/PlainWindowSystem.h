#pragma once

#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/linux/windowsystem/QtScreens.h"
#include "desktop/linux/windowsystem/WindowSystem.h"

namespace linux_desktop {

/// A window system of which only the screens are known, and what the desktop shows on them. Says so
/// in one line when it is made.
class PlainWindowSystem final : public WindowSystem {
 public:
  PlainWindowSystem();

  platform::port::Screens& screens() override { return screens_; }
  OwnWindows& ownWindows() override { return ownWindows_; }
  platform::port::DesktopPictures* desktopPictures() override { return &pictures_; }

 private:
  OwnWindows ownWindows_;
  QtScreens screens_;
  WallpaperPictures pictures_;
};

}  // namespace linux_desktop
