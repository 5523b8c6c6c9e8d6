#pragma once

#include <QByteArray>
#include <memory>

#include "desktop/linux/windowsystem/DesktopView.h"
#include "desktop/linux/x11/MonitorPictures.h"
#include "desktop/linux/x11/XApplications.h"
#include "desktop/linux/x11/XCovers.h"
#include "desktop/linux/x11/XDesktopFacts.h"
#include "desktop/linux/x11/XHotKeys.h"
#include "desktop/linux/x11/XKeyboard.h"
#include "desktop/linux/x11/XOwnWindows.h"
#include "desktop/linux/x11/XScreens.h"
#include "desktop/linux/x11/XTraySelection.h"
#include "desktop/linux/xserver/XEvents.h"
#include "desktop/linux/xserver/XServer.h"

namespace linux_desktop {

/// The X window system, over a connection of our own: what it has to offer. A null pointer: this
/// server cannot do it, and has said so in one line. On Xwayland that is what reaches beyond our
/// own windows: there other programs' are only in part on the server, their keys never, and a cover
/// would lie over them. But KWin keeps an X program's covers in their place and lets it have its
/// keys.
class X11WindowSystem {
 public:
  /// Null where the interface is not on an X server, or that cannot be reached.
  [[nodiscard]] static std::unique_ptr<X11WindowSystem> open();
  /// Whether the X server of the environment can be reached. Needs no application object.
  [[nodiscard]] static bool isReachable();

  [[nodiscard]] platform::port::Screens* screens() { return &screens_; }
  [[nodiscard]] OwnWindows* ownWindows() { return &ownWindows_; }
  [[nodiscard]] LegacyTray* legacyTray() { return &tray_; }
  [[nodiscard]] CoverFactory* covers() { return seesDesktop() ? &covers_ : nullptr; }
  [[nodiscard]] platform::port::WindowList* windowList() { return &windowList_; }
  [[nodiscard]] platform::port::Spaces* spaces() { return &spaces_; }
  [[nodiscard]] platform::port::RunningApplications* runningApplications() {
    return sight_ == Sight::Everything ? &applications_ : nullptr;
  }
  [[nodiscard]] platform::port::HotKeys* hotKeys() {
    return seesDesktop() ? hotKeys_.get() : nullptr;
  }
  [[nodiscard]] KeyTranslator* keyTranslator() { return keyboard_.get(); }

  /// Where i3 takes commands; empty where another window manager runs.
  [[nodiscard]] QByteArray i3Socket();

  [[nodiscard]] DesktopFacts* desktopFacts() { return &facts_; }
  /// Where to ask what the desktop was told to show behind everything; see MonitorPictures. Null,
  /// as at first: nobody. Outlives its being set.
  void setBackdrops(BackdropSource* backdrops) { shown_.setBackdrops(backdrops); }

 private:
  /// What of the session there is to be seen on this server.
  enum class Sight { Everything, DesktopAndKeys, OwnWindows };

  explicit X11WindowSystem(std::unique_ptr<XServer> server);
  [[nodiscard]] Sight look();
  [[nodiscard]] bool seesDesktop() const { return sight_ != Sight::OwnWindows; }

  std::unique_ptr<XServer> server_;
  XEvents events_{*server_};
  XOwnWindows ownWindows_{events_};
  XTraySelection tray_{*server_};
  XScreens screens_{events_};
  MonitorPictures shown_{events_, screens_};
  DesktopWindowList windowList_{screens_, shown_};
  DesktopSpaces spaces_{shown_};
  XDesktopFacts facts_{events_, screens_};
  XCovers covers_{events_, screens_, [this] { shown_.lookAgain(); }};
  XApplications applications_{events_};
  Sight sight_ = look();
  /// Null where the server has no XKB, and then there are no hot keys either.
  std::unique_ptr<XKeyboard> keyboard_;
  std::unique_ptr<XHotKeys> hotKeys_;
};

}  // namespace linux_desktop
