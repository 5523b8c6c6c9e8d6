#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "desktop/linux/wallpaper/WallpaperPictures.h"
#include "desktop/linux/windowsystem/WindowSystem.h"
#include "desktop/linux/x11/MonitorPictures.h"
#include "desktop/linux/x11/XApplications.h"
#include "desktop/linux/x11/XCovers.h"
#include "desktop/linux/x11/XHotKeys.h"
#include "desktop/linux/x11/XKeyTranslator.h"
#include "desktop/linux/x11/XKeyboard.h"
#include "desktop/linux/x11/XOwnWindows.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/x11/XSpaces.h"
#include "desktop/linux/x11/XTraySelection.h"
#include "desktop/linux/x11/XWindowList.h"
#include "desktop/linux/xserver/XEvents.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// The X window system, over a connection of our own.
class X11WindowSystem final : public WindowSystem {
 public:
  /// Null where the interface is not on an X server, or that cannot be reached.
  [[nodiscard]] static std::unique_ptr<X11WindowSystem> open();

  platform::port::Screens& screens() override { return screens_; }
  OwnWindows& ownWindows() override { return ownWindows_; }
  LegacyTray* legacyTray() override { return &tray_; }
  CoverWindows* covers() override { return &covers_; }
  platform::port::DesktopPictures* desktopPictures() override { return &told_; }
  platform::port::WindowList* windowList() override { return &windowList_; }
  platform::port::Spaces* spaces() override { return &spaces_; }
  platform::port::HotKeys* hotKeys() override { return hotKeys_.get(); }
  KeyTranslator* keyTranslator() override { return translator_ ? &*translator_ : nullptr; }
  platform::port::RunningApplications* runningApplications() override { return &applications_; }

  /// Where to ask what the desktop was told to show behind everything; see MonitorPictures. The
  /// desktop itself, until another one is set, which outlives this or the next call.
  void setBackdrops(BackdropSource& backdrops) { shown_.setBackdrops(&backdrops); }

 private:
  explicit X11WindowSystem(std::unique_ptr<XServer> server);

  std::unique_ptr<XServer> server_;
  XEvents events_{*server_};
  XOwnWindows ownWindows_{events_};
  XTraySelection tray_;
  XScreens screens_{events_};
  WallpaperPictures told_{[this] { return screens_.monitors(); }, &events_};
  MonitorPictures shown_{events_, screens_};
  XWindowList windowList_{screens_, shown_};
  XSpaces spaces_{events_, shown_};
  XCovers covers_{events_, screens_};
  XApplications applications_{events_};
  /// Null where the server has no XKB, and then the two that need it are absent.
  std::unique_ptr<XKeyboard> keyboard_;
  std::unique_ptr<XHotKeys> hotKeys_;
  std::optional<XKeyTranslator> translator_;
};

}  // namespace linux_desktop
